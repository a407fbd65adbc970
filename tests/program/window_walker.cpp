#include "tests/program/window_walker.h"
#include "chart/chart_view.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QComboBox>
#include <QDebug>
#include <QDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionTitleBar>
#include <QTabBar>
#include <QTableView>
#include <qcustomplot.h>

namespace
{

constexpr int kLeastContrast = 80;   // of 255, in lightness
constexpr int kLeastPlotHeight = 40; // pixels between the row axis and the upper edge

template <typename... Types>
bool isOne(const QWidget &widget)
{
    return (... || qobject_cast<const Types *>(&widget));
}

/// A control is looked at as a whole.
bool isControl(const QWidget &widget)
{
    return isOne<QAbstractButton, QAbstractScrollArea, QComboBox, QLabel, QLineEdit, QMenuBar,
                 QScrollBar, QTabBar, ChartView>(widget);
}

/// What the inner frame of a history chart shows is what was scrolled to.
bool scrolls(const QWidget &parent)
{
    return parent.objectName().startsWith(QLatin1String("Frame1Chart"));
}

QString nameOf(const QWidget &widget)
{
    return QString::fromLatin1(widget.metaObject()->className()) + ' ' + widget.objectName();
}

QString plain(QString caption)
{
    return caption.remove(QLatin1Char('&'));
}

bool fits(const QFontMetrics &metrics, const QString &text, QSize room)
{
    const QSize needed = metrics.size(0, text);
    return needed.width() <= room.width() && needed.height() <= room.height();
}

bool isShortened(const QLabel &label)
{
    if (label.wordWrap())
        return label.heightForWidth(label.width()) > label.height();
    if (label.textFormat() == Qt::RichText)
        return !QRect({}, label.size()).contains(QRect({}, label.sizeHint()));
    return !fits(label.fontMetrics(), label.text(), label.contentsRect().size());
}

bool isShortened(const QTabBar &tabs)
{
    for (int tab = 0; tab < tabs.count(); ++tab)
        if (!tabs.rect().contains(tabs.tabRect(tab)) ||
            !fits(tabs.fontMetrics(), tabs.tabText(tab), tabs.tabRect(tab).size()))
            return true;
    return false;
}

bool isShortened(const QMenuBar &bar)
{
    for (const QAction *item : bar.actions())
        if (!bar.rect().contains(bar.actionGeometry(const_cast<QAction *>(item))))
            return true;
    return false;
}

bool isShortened(const QTableView &grid)
{
    const QHeaderView &header = *grid.horizontalHeader();
    const QAbstractItemModel &model = *grid.model();
    for (int column = 0; column < header.count(); ++column) {
        QStringList texts{model.headerData(column, Qt::Horizontal).toString()};
        for (int row = 0; row < std::min(model.rowCount(), 50); ++row)
            texts += model.index(row, column).data().toString();
        for (const QString &text : texts)
            if (grid.fontMetrics().horizontalAdvance(text) > header.sectionSize(column))
                return true;
    }
    return grid.viewport()->height() < grid.rowHeight(0);
}

bool isShortened(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return !label->text().isEmpty() && isShortened(*label);
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return !fits(button->fontMetrics(), plain(button->text()), button->size());
    if (const auto *group = qobject_cast<const QGroupBox *>(&widget))
        return !fits(group->fontMetrics(), plain(group->title()), group->size());
    if (const auto *tabs = qobject_cast<const QTabBar *>(&widget))
        return isShortened(*tabs);
    if (const auto *bar = qobject_cast<const QMenuBar *>(&widget))
        return isShortened(*bar);
    if (const auto *grid = qobject_cast<const QTableView *>(&widget))
        return isShortened(*grid);
    if (isOne<QComboBox>(widget))
        return widget.width() < widget.sizeHint().width();
    return false;
}

/// Where a widget paints something: a label's letters, else all of it.
QRect paintedRect(const QWidget &widget)
{
    const auto *label = qobject_cast<const QLabel *>(&widget);
    if (!label || label->frameShape() != QFrame::NoFrame || label->wordWrap() ||
        !label->pixmap().isNull())
        return widget.geometry();
    const QSize letters = label->textFormat() == Qt::RichText
                              ? label->sizeHint()
                              : label->fontMetrics().size(0, label->text());
    return QStyle::alignedRect(Qt::LeftToRight, label->alignment(), letters, label->geometry());
}

bool isEmptyLabel(const QWidget &widget)
{
    const auto *label = qobject_cast<const QLabel *>(&widget);
    return label && label->text().isEmpty() && label->pixmap().isNull();
}

bool isUnreadable(const QWidget &widget)
{
    if (!isOne<QLabel, QAbstractButton, QGroupBox>(widget) || !widget.isEnabled())
        return false;
    const QPalette colours = widget.palette();
    return std::abs(colours.color(widget.foregroundRole()).lightness() -
                    colours.color(widget.backgroundRole()).lightness()) < kLeastContrast;
}

class Walk
{
public:
    QStringList faults;

    void below(const QWidget &parent)
    {
        QList<const QWidget *> seen;
        for (const QObject *object : parent.children()) {
            const auto *child = qobject_cast<const QWidget *>(object);
            if (!child || child->isWindow() || !child->isVisible() || isEmptyLabel(*child))
                continue;
            look(*child, parent);
            for (const QWidget *other : seen)
                if (paintedRect(*child).intersects(paintedRect(*other)))
                    fault(*child, "lies over " + nameOf(*other));
            seen += child;
        }
    }

    /// The tab key follows the eye: on in the row or down.
    void alongTheTabKey(const QWidget &dialog)
    {
        QPoint last;
        for (const QWidget *next = dialog.nextInFocusChain(); next != &dialog;
             next = next->nextInFocusChain()) {
            if (!(next->focusPolicy() & Qt::TabFocus) || !next->isVisible() || next->focusProxy())
                continue;
            const QPoint at = next->mapTo(&dialog, next->rect().center());
            if (at.y() <= last.y() + 5 && at.x() <= last.x())
                fault(*next, "comes late for the tab key");
            last = at;
        }
    }

    void fault(const QWidget &widget, const QString &what)
    {
        const QString at = QDebug::toString(widget.geometry());
        faults += QStringLiteral("%1 at %2 %3").arg(nameOf(widget), at, what);
    }

private:
    void look(const ChartView &chart, const QWidget &parent)
    {
        QCustomPlot &plot = *chart.findChild<QCustomPlot *>();
        plot.replot();
        if (chart.width() < parent.width() * 3 / 4 || plot.axisRect()->height() < kLeastPlotHeight)
            fault(chart, "is too small a chart");
        if (!plot.rect().contains(plot.legend->outerRect()) ||
            plot.legend->outerRect().height() < plot.legend->minimumOuterSizeHint().height())
            fault(chart, "legend is cut");
        const QVector<double> ticks = plot.yAxis->tickVector();
        for (qsizetype i = 1; i < ticks.size(); ++i)
            if (plot.yAxis->coordToPixel(ticks[i - 1]) - plot.yAxis->coordToPixel(ticks[i]) <
                QFontMetrics(plot.yAxis->tickLabelFont()).ascent())
                fault(chart, "has numbers that touch");
    }

    void look(const QWidget &widget, const QWidget &parent)
    {
        if (widget.size().isEmpty())
            fault(widget, "is empty");
        if (!scrolls(parent) && !parent.rect().contains(widget.geometry()))
            fault(widget, "is outside its parent, " + QDebug::toString(parent.size()));
        if (const auto *chart = qobject_cast<const ChartView *>(&widget))
            look(*chart, parent);
        if (isShortened(widget))
            fault(widget, "has a shortened text");
        if (isUnreadable(widget))
            fault(widget, "cannot be read");
        if (!isControl(widget))
            below(widget);
    }
};

/// How much of its title bar a frame leaves to the caption.
int captionRoom(const QWidget &frame)
{
    QStyleOptionTitleBar bar;
    bar.initFrom(&frame);
    bar.titleBarFlags = frame.windowFlags();
    bar.titleBarState = frame.windowState();
    bar.subControls = QStyle::SC_All;
    bar.rect.setHeight(frame.style()->pixelMetric(QStyle::PM_TitleBarHeight, &bar, &frame));
    return frame.style()
        ->subControlRect(QStyle::CC_TitleBar, &bar, QStyle::SC_TitleBarLabel, &frame)
        .width();
}

} // namespace

QStringList faultsOf(const QWidget &frame)
{
    Walk walk;
    QFont caption = frame.font();
    caption.setBold(true); // as some window systems write it
    const bool isSized = !(frame.windowState() & (Qt::WindowMinimized | Qt::WindowMaximized));
    if (isSized) {
        const QSize room = frame.isWindow() ? frame.screen()->size() : frame.parentWidget()->size();
        const QSize wanted = frame.sizeHint().boundedTo(room);
        const bool isMainWindow = isOne<QMainWindow>(frame); // takes what there is
        if (!isMainWindow && (frame.width() < wanted.width() || frame.height() < wanted.height()))
            walk.fault(frame, "is smaller than it wants, " + QDebug::toString(wanted));
        if (!frame.isWindow() && !frame.parentWidget()->rect().contains(frame.geometry()))
            walk.fault(frame, "is outside its area");
        if (QFontMetrics(caption).horizontalAdvance(frame.windowTitle()) > captionRoom(frame))
            walk.fault(frame, "has a shortened caption");
    }
    if (!frame.isWindow() && frame.isMaximized() &&
        frame.geometry() != frame.parentWidget()->rect())
        walk.fault(frame, "is maximised and does not fill its area");
    const auto *subWindow = qobject_cast<const QMdiSubWindow *>(&frame);
    walk.below(subWindow ? *subWindow->widget() : frame);
    if (isOne<QDialog>(frame))
        walk.alongTheTabKey(frame);
    return walk.faults;
}
