#pragma once

#include "diagrams/layout.h"

#include <QWidget>

class ChartView;
class LiveDiagrams;
class QLabel;
class QPushButton;
struct Diagrama;
struct Station;

/// The live diagrams window: MSChart1 above, MSChart2 below, each with its title and the text of
/// the last picked point, and the button of the control centre. It lives in a QMdiSubWindow.
///
/// Opening: create it, put it into its sub window, connect the signals, load(), then show. Closing
/// the sub window unloads and destroys it; the diagrams themselves stay in LiveDiagrams.
class Form1 : public QWidget
{
    Q_OBJECT
public:
    /// Station and diagrams must outlive the window.
    Form1(Station &station, LiveDiagrams &diagrams, QWidget *parent = nullptr);

    /// Builds the tables, reads the settings, draws the charts and sets Station::diagramsOpen.
    /// `mainInner`: size in pixels of the main window's area for child windows. Throws RuntimeError
    /// as LiveDiagrams does.
    void load(QSize mainInner);

    /// Shows the titles of the first two diagrams. Throws RuntimeError 9 when there are fewer.
    void scrie_titlu_diagrame();

    /// Sizes the window with its frame and lays out its parts; `mainInner` as for load(). A
    /// maximised window keeps its size; a minimised one is laid out when it is restored.
    void aranjare_diagrame(QSize mainInner);

    /// A picture of one diagram as the window shows it, with alarm lines and legend. Throws
    /// RuntimeError 9 when the window has no such diagram.
    QImage capture(const Diagrama &record) const;

signals:
    void startRequested();                    ///< F1
    void stopRequested();                     ///< F2
    void initRequested();                     ///< F3
    void fileMenuRequested(QPoint globalPos); ///< right mouse button released
    void titleEditRequested(int diagram);     ///< title double-clicked; index from 0
    void controlCentreRequested();            ///< the button
    void menusEnabled(bool enabled); ///< activare_meniuri_diagrame: true at load, false at unload
    void closed();                   ///< unloaded; destruction follows

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    /// One diagram's place in the window.
    struct Panel {
        ChartView *chart;
        QLabel *title;
        QLabel *pickedPoint;
    };

    Panel createPanel(int index);
    static double pickedPointHeight(const Panel &panel);
    void showPoint(const Panel &panel, int series, int point);
    void centreTitles();
    void fitTitles(double room);

    Station &m_station;
    LiveDiagrams &m_diagrams;
    Panel m_upper;
    Panel m_lower;
    QPushButton *m_controlCentre;
    QSize m_mainInner; ///< of the last layout
    bool m_loaded = false;
};
