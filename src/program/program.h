#pragma once

#include "acquisition/diagram_feed.h"
#include "acquisition/exchange.h"
#include "acquisition/monitoring_cycle.h"
#include "app/mdiform1.h"
#include "app/settings/settings.h"
#include "app/settings/station.h"
#include "diagrams/history_diagrams.h"
#include "diagrams/live_diagrams.h"
#include "platform/scheduler.h"
#include "platform/window_frame.h"
#include "program/dialog_commands.h"
#include "storage/measurement_store.h"

#include <QPointer>
#include <functional>
#include <memory>

class Form1;
class Form2;
class FormMdb;
class AboutBox;
class FormAdoChart;
class Operator;
class Printers;
class SerialLine;
class Shell;

/// The running station: owns the shared state, the rooms' objects and the windows, and connects
/// them. main and the demonstration differ only in what they give it.
class Program final : public QObject, private DiagramFeed
{
    Q_OBJECT
public:
    struct Environment {
        QString appFolder; ///< the station's folder
        QLocale locale;    ///< of the screen
        Clock &clock;
        Operator &op;
        Shell &shell;
        Printers &printers;
        std::function<void()> endProgram; ///< after the closing dialogue; ends the event loop
    };

    /// Everything in `environment` must outlive the program.
    explicit Program(Environment environment);
    ~Program() override;

    /// Shows the main window, creates ControlPlc and opens the live diagrams, whose loading reads
    /// the settings. Throws RuntimeError when the settings cannot be used.
    void start();

    void showControlCentre();
    /// Archives the storage file that is in use.
    void archiveStorage();

    /// Stops monitoring: a failure is about to end the program.
    void halt();

    /// Monitoring, through the control centre's own handlers.
    Form2 &controlCentre();
    Station &station() { return m_station; }
    MDIForm1 &window() { return m_window; }

signals:
    /// A record with that Id is safely in the storage file.
    void sampleStored(int id);

private:
    void adauga_citiri(const std::vector<Sensor> &sensors) override;
    void goleste_diagramele() override;
    void showAtOrigin() override;

    void createControlPlc();
    std::vector<MenuItem> menu();
    void connectRooms();
    void openOptions(int diagram, OptionTab tab);
    /// Brings the window up; `open` creates and loads it if necessary.
    template <typename Form>
    void show(QPointer<Form> &form, void (Program::*open)());
    /// Puts a new window into the main window, `form` points to it until it is closed.
    template <typename Form>
    void addChild(QPointer<Form> &form, Form *child);
    void showDiagrams();
    void openDiagrams();
    void showBrowser();
    void openBrowser();
    void closeBrowser();
    void reopenBrowser();
    void showGenerator();
    void openGenerator();
    void openHistoryLimits();
    void saveImages();
    void print();
    void showAboutBox();
    void openArchiveFolder();
    void openHelp();
    /// Lays out the open windows, or only that one.
    void layOut(const QWidget *only = nullptr);
    void activare_meniuri_diagrame(bool enabled);
    bool closingDialogue();

    Environment m_environment;
    Station m_station;
    Settings m_settings;
    MeasurementStore m_storage;
    LiveDiagrams m_diagrams;
    HistoryDiagrams m_history;
    MDIForm1 m_window; // owns the windows, which use all members above it
    DialogCommands m_dialogs;
    QtScheduler m_scheduler;
    WindowPosition m_controlCentrePosition;
    bool m_controlCentrePlaced = false;
    WindowPlace m_browserPlace;
    std::unique_ptr<SerialLine> m_controlPlc;
    std::unique_ptr<Exchange> m_exchange;
    std::unique_ptr<MonitoringCycle> m_cycle;
    QPointer<Form1> m_form1;
    QPointer<Form2> m_form2;
    QPointer<FormMdb> m_formMdb;
    QPointer<FormAdoChart> m_formAdoChart;
    QPointer<AboutBox> m_aboutBox;
};
