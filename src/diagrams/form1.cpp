#include "diagrams/form1.h"
#include "app/settings/station.h"
#include "chart/chart_grid.h"
#include "chart/chart_view.h"
#include "chart/plot_style.h"
#include "diagrams/live_diagrams.h"
#include "diagrams/texts.h"
#include "diagrams/window_geometry.h"
#include "platform/runtime_error.h"
#include "platform/twips.h"
#include "platform/window_frame.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <algorithm>

namespace
{

constexpr int kLargestTitlePixels = 19;
constexpr int kSmallestTitlePixels = 10;
constexpr int kTitleFrameTwips = 60;    // what a label adds around its letters
constexpr double kFontLineHeight = 1.3; // a line of text against its letters' size
constexpr int kPictureMarginTwips = 50; // what a picture adds to its chart's width and height

QImage picture(ChartView &chart)
{
    const QColor behind =
        chart.grid().backdrop() == ChartGrid::Backdrop::White ? Qt::white : windowColour(chart);
    const int margin = pixelsFromTwips(kPictureMarginTwips);
    QImage image(chart.size() + QSize(margin, margin), QImage::Format_RGB32);
    image.fill(behind);
    QPainter(&image).drawImage(0, 0, chart.image(behind));
    return image;
}

QFont controlCentreFont(QFont font)
{
    font.setFamilies({QStringLiteral("Bookman Old Style"), QStringLiteral("URW Bookman"),
                      QStringLiteral("Bookman"), QStringLiteral("Georgia")});
    font.setStyleHint(QFont::Serif);
    return font;
}

} // namespace

Form1::Form1(Station &station, LiveDiagrams &diagrams, QWidget *parent)
    : QWidget(parent), m_station(station), m_diagrams(diagrams), m_upper(createPanel(0)),
      m_lower(createPanel(1)),
      m_controlCentre(new QPushButton(texts::diagrams::controlCentreButton(), this))
{
    setObjectName(QStringLiteral("Form1"));
    setWindowTitle(texts::diagrams::diagramsCaption());
    setFocusPolicy(Qt::StrongFocus);
    setLocale(station.locale);
    m_controlCentre->setObjectName(QStringLiteral("CentruControlCommand"));
    m_controlCentre->setFont(controlCentreFont(font()));
    m_controlCentre->adjustSize();
    connect(m_controlCentre, &QPushButton::clicked, this, &Form1::controlCentreRequested);
    m_upper.chart->alignWith(*m_lower.chart);
}

Form1::Panel Form1::createPanel(int index)
{
    ChartGrid &grid = m_diagrams.chart(static_cast<std::size_t>(index));
    const Panel panel{new ChartView(grid, this), new QLabel(texts::diagrams::designedTitle(), this),
                      new QLabel(this)};
    panel.chart->setObjectName(QStringLiteral("MSChart%1").arg(index + 1));
    panel.title->setObjectName(QStringLiteral("Label%1").arg(index + 1));
    panel.title->setToolTip(texts::diagrams::titleTip());
    panel.title->setTextFormat(Qt::PlainText);
    panel.title->installEventFilter(this);
    panel.pickedPoint->setObjectName(QStringLiteral("DateLabel1_%1").arg(index));
    panel.pickedPoint->setTextFormat(Qt::PlainText);
    connect(panel.chart, &ChartView::pointPicked, this,
            [this, panel](int series, int point) { showPoint(panel, series, point); });
    return panel;
}

void Form1::load(QSize mainInner)
{
    m_loaded = true;
    m_diagrams.loadTables();
    aranjare_diagrame(mainInner);
    emit menusEnabled(true);
    m_diagrams.loadSettings();
    scrie_titlu_diagrame();
    m_station.diagramsOpen = true;
}

void Form1::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (!m_loaded)
        return;
    m_loaded = false;
    emit menusEnabled(false);
    m_station.diagramsOpen = false;
    emit closed();
}

void Form1::scrie_titlu_diagrame()
{
    if (m_station.Diagrame.size() < 2)
        throw RuntimeError(RuntimeError::SubscriptOutOfRange);
    m_upper.title->setText(m_station.Diagrame[0].Titlu);
    m_lower.title->setText(m_station.Diagrame[1].Titlu);
    centreTitles();
}

void Form1::centreTitles()
{
    for (QLabel *title : {m_upper.title, m_lower.title}) {
        title->adjustSize();
        title->move((width() - title->width()) / 2, title->y());
    }
}

void Form1::aranjare_diagrame(QSize mainInner)
{
    m_mainInner = mainInner;
    if (frameOf(*this)->isMinimized())
        return;
    const TwipsSize main = twipsSize(mainInner);
    resizeFrame(*this, form1Size(main));
    fitTitles(titleRoom(main));

    const DiagramsLayout layout =
        diagramsLayout(main, {twipsSize(frameOf(*this)->size()), twipsSize(size()),
                              twipsSize(m_upper.title->size()), twipsSize(m_lower.title->size()),
                              twipsSize(m_controlCentre->size()), pickedPointHeight(m_upper),
                              pickedPointHeight(m_lower)});
    m_upper.chart->setGeometry(pixelRect(layout.chart1));
    m_upper.title->setGeometry(pixelRect(layout.label1));
    m_upper.pickedPoint->move(0, pixelsFromTwips(layout.dateLabel1Top));
    m_lower.chart->setGeometry(pixelRect(layout.chart2) & rect());
    m_lower.title->setGeometry(pixelRect(layout.label2));
    m_lower.pickedPoint->move(0, pixelsFromTwips(layout.dateLabel2Top));
    m_controlCentre->setGeometry(pixelRect(layout.button));
}

double Form1::pickedPointHeight(const Panel &panel)
{
    return panel.pickedPoint->text().isEmpty() ? 0 : twipsFromPixels(panel.pickedPoint->height());
}

/// The titles shrink with the room above the upper chart.
void Form1::fitTitles(double room)
{
    QFont titleFont = font();
    titleFont.setBold(true);
    titleFont.setPixelSize(
        std::clamp(static_cast<int>(pixelsFromTwips(room - kTitleFrameTwips) / kFontLineHeight),
                   kSmallestTitlePixels, kLargestTitlePixels));
    for (QLabel *title : {m_upper.title, m_lower.title}) {
        title->setFont(titleFont);
        title->adjustSize();
    }
}

void Form1::showPoint(const Panel &panel, int series, int point)
{
    panel.pickedPoint->setText(m_diagrams.pointText(panel.chart->grid(), series, point));
    panel.pickedPoint->adjustSize();
    aranjare_diagrame(m_mainInner); // the text needs room
}

bool Form1::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonDblClick &&
        static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        emit titleEditRequested(watched == m_upper.title ? 0 : 1);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void Form1::keyReleaseEvent(QKeyEvent *event)
{
    // A held key repeats; only its release counts.
    if (event->isAutoRepeat())
        return QWidget::keyReleaseEvent(event);
    switch (event->key()) {
    case Qt::Key_F1:
        emit startRequested();
        break;
    case Qt::Key_F2:
        emit stopRequested();
        break;
    case Qt::Key_F3:
        emit initRequested();
        break;
    default:
        QWidget::keyReleaseEvent(event);
    }
}

void Form1::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton)
        emit fileMenuRequested(event->globalPosition().toPoint());
    else
        QWidget::mouseReleaseEvent(event);
}

QImage Form1::capture(const Diagrama &record) const
{
    for (const Panel &panel : {m_upper, m_lower})
        if (&panel.chart->grid() == record.chart)
            return picture(*panel.chart);
    throw RuntimeError(RuntimeError::SubscriptOutOfRange);
}
