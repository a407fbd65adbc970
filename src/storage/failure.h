#pragma once

#include <QString>
#include <functional>
#include <optional>

/// A failure as it is shown to the operator: the number and description of a database error or a
/// runtime error.
struct Failure {
    int number;
    QString description;

    /// Number, one blank, description.
    QString text() const { return QStringLiteral("%1 %2").arg(number).arg(description); }
};

/// The exception being handled, as a failure. Rethrows an exception that has no number.
Failure currentFailure();

/// Runs `action`. Returns the failure that ended it, or nothing; any other exception passes
/// through.
std::optional<Failure> attempt(const std::function<void()> &action);
