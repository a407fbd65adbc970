#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QtTest/QTest>
#include <gtest/gtest.h>

/// A control of a form by its given name.
template <typename Control>
Control &control(const QWidget &form, const char *name)
{
    auto *found = form.findChild<Control *>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return *found;
}

/// Presses a button with the mouse.
inline void press(const QWidget &form, const char *button)
{
    QTest::mouseClick(&control<QPushButton>(form, button), Qt::LeftButton);
}

/// Types a text in place of the one in a box.
inline void type(const QWidget &form, const char *box, const QString &text)
{
    auto &edit = control<QLineEdit>(form, box);
    edit.selectAll();
    QTest::keyClicks(&edit, text);
}

inline QString textOf(const QWidget &form, const char *box)
{
    return control<QLineEdit>(form, box).text();
}
