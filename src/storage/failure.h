#pragma once

#include <QString>
#include <functional>
#include <optional>

/// A failure as the operator reads of it: the number and description of a database error or of the
/// runtime.
struct Failure {
    int number;
    QString description;

    /// Number, one blank, description.
    QString text() const { return QStringLiteral("%1 %2").arg(number).arg(description); }
};

/// The exception that is being handled. One without a number of its own is thrown on.
Failure currentFailure();

/// Runs `action`. Returns the failure that ended it, or nothing; any other exception passes
/// through.
std::optional<Failure> attempt(const std::function<void()> &action);
