#pragma once

#include <QCoreApplication>
#include <QScrollArea>
#include <chrono>
#include <functional>

/// What benchmarks of windows measure with.

class Stopwatch
{
public:
    void restart() { m_start = std::chrono::steady_clock::now(); }
    double milliseconds() const
    {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start)
            .count();
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// From the start of `action` until its window is painted and nothing is left to paint.
inline double untilPainted(QWidget &window, const std::function<void()> &action)
{
    Stopwatch watch;
    action();
    // Replots are queued, layouts posted: each round may ask for one more.
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    window.repaint();
    return watch.milliseconds();
}

/// A widget of that width in a scroll area of its own; two of them share a window.
inline QScrollArea *wideInWindow(QWidget &window, std::size_t place, QWidget *content, int width)
{
    auto *area = new QScrollArea(&window);
    const int height = window.height() / 2;
    area->setGeometry(0, static_cast<int>(place) * height, window.width(), height);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    content->resize(width, height - 30);
    area->setWidget(content);
    return area;
}
