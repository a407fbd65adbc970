#pragma once

#include <QWidget>
#include <gtest/gtest.h>

/// A control of a form by its given name.
template <typename Control>
Control &control(const QWidget &form, const char *name)
{
    auto *found = form.findChild<Control *>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return *found;
}
