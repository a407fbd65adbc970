#pragma once

#include "diagrams/history_layout.h"

#include <QWidget>

class ChartView;
class HistoryDiagrams;
class Operator;
class Clock;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollBar;
struct Station;

/// The history window: the operator types a date, Command1 draws that day's archive in
/// MSChartAdo1 and MSChartAdo2. A long day makes a chart wider than the window; it then scrolls
/// inside its viewport. It lives in a QMdiSubWindow.
///
/// Opening: create it, put it into its sub window, load(), then show. Closing the sub window
/// unloads and destroys it.
class FormAdoChart : public QWidget
{
    Q_OBJECT
public:
    /// All must outlive the window.
    FormAdoChart(Station &station, HistoryDiagrams &diagrams, Operator &op, const Clock &clock,
                 QWidget *parent = nullptr);

    /// Clears the charts, reads limits and names from the settings, lays out the window and sets
    /// Station::historyOpen. `mainInner`: size in pixels of the main window's area for child
    /// windows. Throws what HistoryDiagrams::load() throws.
    void load(QSize mainInner);

    /// Sizes the window for the main window's area, then lays it out with the chart widths of the
    /// last generation. A minimised window is laid out when it is restored.
    void followMainWindow(QSize mainInner);

public slots:
    /// Draws the day whose date is in Text1; does nothing when that is no date.
    void Command1_Click();

signals:
    void closed(); ///< unloaded; destruction follows

protected:
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    /// One chart: inner frame in its viewport, scroll bar below, title above. The key replaces the
    /// legend of a chart that is wider than the window, where the legend is out of sight.
    struct Panel {
        QLabel *title;
        QLabel *key;
        QFrame *viewport;
        QWidget *inner;
        ChartView *chart;
        QScrollBar *scroll;
    };

    Panel createPanel(std::size_t index, const QString &titleName);
    QLabel *createLabel(const QString &name, const QString &text = {});
    void connectPanel(Panel &panel, std::size_t index);
    HistoryMeasures measures() const;
    double windowWidth() const;

    void useSystemDateForm();
    void generate(const QString &archive);
    void showWait();
    void showStartOfDay();
    void arrangeWithKeptWidths();

    /// Sets the charts to these widths, in twips, and lays out everything.
    void aranjare_totala_formado(double latime1, double latime2);
    void aranjare();
    void aranjare_frame12_chart1();
    void aranjare_frame12_chart2();
    void aranjare_label_selectii();
    void aranjare_labelstare();
    void arrangeFrames(const Panel &panel, const HistoryPanel &place);
    static void showKey(const Panel &panel);
    void scroll(const Panel &panel);

    Station &m_station;
    HistoryDiagrams &m_diagrams;
    Operator &m_operator;
    const Clock &m_clock;
    QLabel *m_prompt;
    QLineEdit *m_date;
    QPushButton *m_generate;
    QLabel *m_status;
    QLabel *m_selection;
    Panel m_upper;
    Panel m_lower;
    QLabel *m_wait; // last: it lies above the charts
    HistoryLayout m_layout;
    quint8 m_scrollFactor = 1;
    bool m_loaded = false;
};
