#include "diagrams/form_ado_chart.h"
#include "app/settings/station.h"
#include "chart/chart_grid.h"
#include "chart/chart_view.h"
#include "chart/plot_style.h"
#include "diagrams/history_date.h"
#include "diagrams/history_diagrams.h"
#include "diagrams/texts.h"
#include "diagrams/window_geometry.h"
#include "platform/file_date.h"
#include "platform/operator.h"
#include "platform/twips.h"
#include "platform/window_frame.h"
#include "storage/storage_names.h"

#include <QCloseEvent>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <algorithm>

namespace
{

constexpr int kStartOfDay = -32767; // a scroll bar's value
constexpr int kDateCharacters = 14;
constexpr int kStepsPerPage = 20;
constexpr int kKeyGap = 8; // pixels
constexpr QSize kWaitMargins(60, 30);

/// The sensors' names, each behind a piece of its line.
QString keyText(const ChartGrid &grid)
{
    QStringList names;
    for (int column = 1; column <= grid.sensorColumns(); ++column)
        names += QStringLiteral("<span style=\"color:%1\"><b>\u2501\u2501</b></span> %2")
                     .arg(columnPen(grid, column, false).color().name(),
                          grid.columnLabelOf(column).toHtmlEscaped());
    return names.join(QStringLiteral("&nbsp;&nbsp; "));
}

QFont boldFont(QFont font)
{
    font.setBold(true);
    return font;
}

} // namespace

FormAdoChart::FormAdoChart(Station &station, HistoryDiagrams &diagrams, Operator &op,
                           const Clock &clock, QWidget *parent)
    : QWidget(parent), m_station(station), m_diagrams(diagrams), m_operator(op), m_clock(clock),
      m_prompt(createLabel(QStringLiteral("Label1"), texts::diagrams::datePrompt())),
      m_date(new QLineEdit(texts::diagrams::firstDate(), this)),
      m_generate(new QPushButton(texts::diagrams::generateButton(), this)),
      m_status(createLabel(QStringLiteral("LabelStare"), texts::diagrams::notGenerated())),
      m_selection(createLabel(QStringLiteral("LabelDate"))),
      m_upper(createPanel(0, QStringLiteral("LabelTemp"))),
      m_lower(createPanel(1, QStringLiteral("LabelPres"))),
      m_wait(createLabel(QStringLiteral("LabelWait"), texts::diagrams::generating()))
{
    setObjectName(QStringLiteral("FormAdoChart"));
    setWindowTitle(texts::diagrams::historyCaption());
    setLocale(station.locale);
    m_date->setObjectName(QStringLiteral("Text1"));
    m_date->selectAll(); // typing replaces the date
    setFocusProxy(m_date);
    m_generate->setObjectName(QStringLiteral("Command1"));
    m_status->setFont(boldFont(font()));
    m_wait->setFont(boldFont(font()));
    m_wait->setFrameShape(QFrame::Box);
    m_wait->setAutoFillBackground(true);
    m_wait->setAlignment(Qt::AlignCenter);
    m_wait->hide();
    m_upper.chart->alignWith(*m_lower.chart);
    connect(m_generate, &QPushButton::clicked, this, &FormAdoChart::Command1_Click);
    connect(m_date, &QLineEdit::returnPressed, this, &FormAdoChart::Command1_Click);
}

QLabel *FormAdoChart::createLabel(const QString &name, const QString &text)
{
    auto *label = new QLabel(text, this);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

FormAdoChart::Panel FormAdoChart::createPanel(std::size_t index, const QString &titleName)
{
    const QString number = QString::number(index + 1);
    Panel panel{};
    panel.title = createLabel(titleName, texts::diagrams::designedTitle());
    panel.title->setAlignment(Qt::AlignCenter);
    panel.title->setFont(boldFont(font()));
    panel.key = createLabel(QStringLiteral("LegendChart") + number);
    panel.key->setTextFormat(Qt::RichText);
    panel.viewport = new QFrame(this);
    panel.viewport->setObjectName(QStringLiteral("Frame1Chart") + number);
    panel.inner = new QWidget(panel.viewport);
    panel.inner->setObjectName(QStringLiteral("Frame2Chart") + number);
    panel.chart = new ChartView(m_diagrams.chart(index), panel.inner);
    panel.chart->setObjectName(QStringLiteral("MSChartAdo") + number);
    panel.scroll = new QScrollBar(Qt::Horizontal, this);
    panel.scroll->setObjectName(QStringLiteral("HScroll") + number);
    panel.scroll->setRange(kStartOfDay, kStartOfDay);
    connectPanel(panel, index);
    return panel;
}

void FormAdoChart::connectPanel(Panel &panel, std::size_t index)
{
    connect(panel.scroll, &QScrollBar::valueChanged, this, [this, panel] { scroll(panel); });
    connect(panel.chart, &ChartView::pointPicked, this, [this, index](int series, int point) {
        m_selection->setText(m_diagrams.pointText(index, series, point));
    });
}

void FormAdoChart::load(QSize mainInner)
{
    m_station.historyWidths = {};
    m_diagrams.load();
    m_upper.title->setText(m_station.diagramAt(0).Titlu);
    m_lower.title->setText(m_station.diagramAt(1).Titlu);
    m_loaded = true;
    followMainWindow(mainInner);
    m_station.historyOpen = true;
}

void FormAdoChart::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (!m_loaded)
        return;
    m_loaded = false;
    m_station.historyOpen = false;
    m_diagrams.unload();
    emit closed();
}

void FormAdoChart::Command1_Click()
{
    useSystemDateForm();
    const std::optional<QDate> day = typedDate(m_date->text(), m_station.locale);
    if (!day)
        return;
    generate(archiveName(fileDate(*day), m_station.NumeFisier[0]));
}

/// The prompt then shows the system's date form, and a date typed with points is accepted.
void FormAdoChart::useSystemDateForm()
{
    const QString separator = dateSeparator(m_clock.now().date(), m_station.locale);
    m_date->setText(m_date->text().replace(QLatin1Char('.'), separator));
    m_prompt->setText(m_prompt->text().replace(QLatin1Char('.'), separator));
}

void FormAdoChart::generate(const QString &archive)
{
    showWait();
    m_selection->clear();
    const QString failure = m_diagrams.genereaza_diagrame({archive});
    m_status->setText(failure.isEmpty() ? texts::diagrams::generated(m_date->text())
                                        : texts::diagrams::notGenerated());
    m_wait->hide();

    m_station.historyWidths = m_diagrams.chartWidths();
    if (m_station.historyWidths[0] == 0)
        m_station.historyWidths = {windowWidth(), windowWidth()};
    arrangeWithKeptWidths();
    showStartOfDay();
    if (!failure.isEmpty())
        m_operator.tell(failure, Operator::Icon::Exclamation);
}

/// Painted at once: the work that follows blocks painting.
void FormAdoChart::showWait()
{
    m_wait->resize(m_wait->sizeHint() + kWaitMargins);
    const QRect charts = m_upper.viewport->geometry() | m_lower.viewport->geometry();
    m_wait->move(charts.center() - m_wait->rect().center());
    m_wait->show();
    m_wait->raise();
    m_wait->repaint();
}

void FormAdoChart::showStartOfDay()
{
    for (const Panel &panel : {m_upper, m_lower})
        panel.scroll->setValue(kStartOfDay);
}

void FormAdoChart::followMainWindow(QSize mainInner)
{
    if (frameOf(*this)->isMinimized())
        return;
    resizeFrame(*this, form1Size(twipsSize(mainInner)));
    arrangeWithKeptWidths();
}

void FormAdoChart::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_loaded)
        arrangeWithKeptWidths();
}

void FormAdoChart::arrangeWithKeptWidths()
{
    const auto &[width1, width2] = m_station.historyWidths;
    if (width1 == 0)
        aranjare_totala_formado(windowWidth(), windowWidth());
    else
        aranjare_totala_formado(width1, width2);
}

double FormAdoChart::windowWidth() const
{
    return historyLayout(measures()).chart1.viewport.width;
}

HistoryMeasures FormAdoChart::measures() const
{
    HistoryMeasures measures;
    measures.inner = twipsSize(size());
    measures.prompt = twipsSize(m_prompt->sizeHint());
    measures.date = twipsSize(
        {m_date->fontMetrics().averageCharWidth() * kDateCharacters, m_date->sizeHint().height()});
    measures.button = twipsSize(m_generate->sizeHint());
    const QString usual = texts::diagrams::generated(texts::diagrams::firstDate());
    measures.statusWidth = twipsFromPixels(std::max(
        m_status->sizeHint().width(), m_status->fontMetrics().horizontalAdvance(usual) + 2));
    measures.textHeight = twipsFromPixels(m_status->fontMetrics().lineSpacing() + 2);
    measures.scrollBarHeight = twipsFromPixels(m_upper.scroll->sizeHint().height());
    return measures;
}

void FormAdoChart::aranjare_totala_formado(double latime1, double latime2)
{
    m_upper.chart->resize(pixelsFromTwips(latime1), m_upper.chart->height());
    m_lower.chart->resize(pixelsFromTwips(latime2), m_lower.chart->height());
    aranjare();
    aranjare_frame12_chart1();
    aranjare_frame12_chart2();
    aranjare_label_selectii();
    aranjare_labelstare();
}

void FormAdoChart::aranjare()
{
    m_layout = historyLayout(measures());
    m_prompt->setGeometry(pixelRect(m_layout.prompt));
    m_date->setGeometry(pixelRect(m_layout.date));
    m_generate->setGeometry(pixelRect(m_layout.button));
    m_upper.title->setGeometry(pixelRect(m_layout.chart1.title));
    m_lower.title->setGeometry(pixelRect(m_layout.chart2.title));
}

void FormAdoChart::aranjare_frame12_chart1()
{
    arrangeFrames(m_upper, m_layout.chart1);
}

void FormAdoChart::aranjare_frame12_chart2()
{
    arrangeFrames(m_lower, m_layout.chart2);
}

void FormAdoChart::aranjare_label_selectii()
{
    m_selection->setGeometry(pixelRect(m_layout.selection));
}

void FormAdoChart::aranjare_labelstare()
{
    m_status->setGeometry(pixelRect(m_layout.status));
}

/// The inner frame starts at the left edge and then returns to the scrolled position, as far as the
/// new range allows.
void FormAdoChart::arrangeFrames(const Panel &panel, const HistoryPanel &place)
{
    panel.viewport->setGeometry(pixelRect(place.viewport));
    panel.scroll->setGeometry(pixelRect(place.scrollBar));
    const QSize chart(panel.chart->width(), panel.viewport->height());
    panel.chart->resize(chart);
    panel.inner->setGeometry(QRect(QPoint(0, 0), chart));

    const double viewport = twipsFromPixels(panel.viewport->width());
    const ScrollRange range = scrollRange(twipsFromPixels(panel.inner->x()),
                                          twipsFromPixels(chart.width()), viewport, m_scrollFactor);
    m_scrollFactor = range.factor;
    panel.scroll->setRange(range.minimum, range.maximum);
    panel.scroll->setPageStep(std::max(1, static_cast<int>(viewport) / m_scrollFactor));
    panel.scroll->setSingleStep(std::max(1, panel.scroll->pageStep() / kStepsPerPage));
    panel.scroll->setEnabled(range.maximum > range.minimum);
    scroll(panel);
    showKey(panel);
}

void FormAdoChart::showKey(const Panel &panel)
{
    panel.key->setText(keyText(panel.chart->grid()));
    panel.key->adjustSize();
    QRect place = panel.key->rect();
    place.moveBottomRight(panel.viewport->geometry().topRight() - QPoint(0, 1));
    panel.key->setGeometry(place);
    panel.key->setVisible(panel.scroll->isEnabled());
    // A title that would overlap the key moves to the left.
    QRect title = panel.viewport->geometry();
    title.setTop(panel.title->y());
    title.setHeight(panel.title->height());
    const int titleEnd = title.center().x() + panel.title->sizeHint().width() / 2;
    if (panel.scroll->isEnabled() && titleEnd >= place.left())
        title.setRight(place.left() - kKeyGap);
    panel.title->setGeometry(title);
}

void FormAdoChart::scroll(const Panel &panel)
{
    panel.inner->move(pixelsFromTwips(innerFrameLeft(panel.scroll->value(), m_scrollFactor)), 0);
}
