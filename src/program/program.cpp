#include "program/program.h"
#include "acquisition/form2.h"
#include "app/settings/keys.h"
#include "app/texts.h"
#include "diagrams/diagram_printing.h"
#include "diagrams/form1.h"
#include "diagrams/form_ado_chart.h"
#include "diagrams/image_export.h"
#include "platform/line_settings.h"
#include "platform/operator.h"
#include "platform/refused_line.h"
#include "platform/runtime_error.h"
#include "platform/shell.h"
#include "platform/system_information.h"
#include "platform/system_serial_line.h"
#include "platform/twips.h"
#include "program/about_box.h"
#include "program/texts.h"
#include "storage/form_mdb.h"

#include <QMdiSubWindow>
#include <algorithm>
#include <utility>

Program::Program(Environment environment)
    : m_environment(std::move(environment)), m_settings(m_station, m_environment.op),
      m_storage(m_station, m_environment.op, m_environment.clock),
      m_diagrams(m_station, m_settings, m_environment.clock), m_history(m_station, m_settings),
      m_window([this] { return closingDialogue(); }),
      m_dialogs(m_station, m_settings, m_environment.op, m_environment.clock, m_window),
      m_scheduler(m_window)
{
    m_station.appFolder = m_environment.appFolder;
    m_station.locale = m_environment.locale;
}

Program::~Program() = default;

void Program::start()
{
    createControlPlc();
    m_window.setMenu(menu());
    connectRooms();
    m_window.showMaximized();
    showDiagrams();
}

void Program::halt()
{
    if (!m_cycle)
        return;
    m_cycle->stop();
    m_exchange->abandon();
}

static std::unique_ptr<SerialLine> configuredLine(const Settings &settings, QObject *parent)
{
    const auto port = settings.optionalValue(keys::commPort());
    const auto text = settings.optionalValue(keys::lineSettings());
    try {
        LineSettings line;
        if (port)
            line.port = *port;
        if (text)
            parseLineSettings(*text, line);
        return makeSerialLine(line, parent);
    } catch (const RuntimeError &error) {
        // History, browser and settings need no line; monitoring reports it as it starts.
        return std::make_unique<RefusedLine>(error, parent);
    }
}

void Program::createControlPlc()
{
    m_controlPlc = configuredLine(m_settings, &m_window);
    m_exchange =
        std::make_unique<Exchange>(m_station, *m_controlPlc, m_scheduler, m_environment.op);
    DiagramFeed &diagrams = *this;
    m_cycle = std::make_unique<MonitoringCycle>(m_station, *m_exchange, diagrams, m_storage,
                                                m_environment.clock, m_scheduler);
}

void Program::connectRooms()
{
    connect(&m_window, &MDIForm1::areaResized, this, [this] { layOut(); });
    connect(&m_window, &MDIForm1::childStateChanged, this, &Program::layOut);
    connect(&m_window, &MDIForm1::childActivated, this, [this](const QWidget *child) {
        if (child == m_form2.data())
            m_form2->scrie_stare_monitor();
        else if (child == m_formMdb.data())
            m_formMdb->onActivated();
    });
    connect(&m_storage, &MeasurementStore::browserMustClose, this, &Program::closeBrowser);
    connect(&m_storage, &MeasurementStore::browserMayReopen, this, &Program::reopenBrowser);
    connect(&m_storage, &MeasurementStore::recordStored, this, &Program::sampleStored);
    // Whatever became of the diagrams behind the dialog.
    connect(&m_dialogs, &DialogCommands::released, this,
            [this] { activare_meniuri_diagrame(m_station.diagramsOpen); });
}

template <typename Form>
void Program::show(QPointer<Form> &form, void (Program::*open)())
{
    if (!form)
        (this->*open)();
    m_window.bringUp(form);
}

template <typename Form>
void Program::addChild(QPointer<Form> &form, Form *child)
{
    form = child;
    m_window.addChild(child);
    connect(child, &Form::closed, this, [&form] { form = nullptr; });
}

void Program::showDiagrams()
{
    show(m_form1, &Program::openDiagrams);
}

void Program::openDiagrams()
{
    addChild(m_form1, new Form1(m_station, m_diagrams));
    connect(m_form1, &Form1::startRequested, this,
            [this] { controlCentre().StartMonCommand_Click(); });
    connect(m_form1, &Form1::stopRequested, this,
            [this] { controlCentre().StopMonCommand_Click(); });
    connect(m_form1, &Form1::initRequested, this,
            [this] { controlCentre().InitDiagCommand_Click(); });
    connect(m_form1, &Form1::fileMenuRequested, this, [this](const QPoint &position) {
        m_window.popUp(QStringLiteral("MeniuFisier"), position);
    });
    connect(m_form1, &Form1::titleEditRequested, this, [this](int diagram) {
        connect(m_dialogs.openTitle(diagram), &QDialog::accepted, m_form1.data(),
                &Form1::scrie_titlu_diagrame);
    });
    connect(m_form1, &Form1::controlCentreRequested, this, &Program::showControlCentre);
    connect(m_form1, &Form1::menusEnabled, this, &Program::activare_meniuri_diagrame);
    m_form1->load(m_window.innerSize());
    layOut(m_form1); // behind a message of the load the main window may have changed its size
}

void Program::adauga_citiri(const std::vector<Sensor> &sensors)
{
    m_diagrams.adauga_citiri(sensors);
}

void Program::goleste_diagramele()
{
    m_diagrams.goleste_diagramele();
}

void Program::showAtOrigin()
{
    showDiagrams();
    m_form1->parentWidget()->move(0, 0);
}

Form2 &Program::controlCentre()
{
    if (!m_form2) {
        m_form2 = new Form2(*m_cycle, m_station, m_controlCentrePosition);
        QMdiSubWindow *frame = m_window.addChild(m_form2);
        frame->hide();
        // It first opens where it hides least of the diagrams: in the lower right corner.
        if (!std::exchange(m_controlCentrePlaced, true)) {
            const QSize room = m_window.innerSize() - frame->sizeHint();
            m_controlCentrePosition = {twipsFromPixels(std::max(0, room.width())),
                                       twipsFromPixels(std::max(0, room.height()))};
        }
    }
    return *m_form2;
}

void Program::showControlCentre()
{
    m_window.bringUp(&controlCentre());
}

void Program::showBrowser()
{
    show(m_formMdb, &Program::openBrowser);
}

void Program::openBrowser()
{
    auto *browser = new FormMdb(m_station);
    connect(browser, &FormMdb::closed, this, [this, browser] { m_browserPlace.save(*browser); });
    // Queued: behind the box the archive may close the window that has failed.
    connect(
        browser, &FormMdb::failed, this,
        [this](const QString &failure) { m_environment.op.tell(failure); }, Qt::QueuedConnection);
    addChild(m_formMdb, browser);
    m_browserPlace.restore(*browser);
}

void Program::closeBrowser()
{
    if (!m_formMdb)
        return;
    m_dialogs.closeLocked(*m_formMdb);
}

void Program::reopenBrowser()
{
    showBrowser();
    if (!m_dialogs.disableBehindLockedDialog(*m_formMdb) && m_station.diagramsOpen)
        m_window.activate(m_form1);
}

void Program::archiveStorage()
{
    m_storage.arhiveaza_baza_date(m_station.NumeFisier[0]);
}

void Program::showGenerator()
{
    show(m_formAdoChart, &Program::openGenerator);
}

void Program::openGenerator()
{
    addChild(m_formAdoChart,
             new FormAdoChart(m_station, m_history, m_environment.op, m_environment.clock));
    m_formAdoChart->load(m_window.innerSize());
    layOut(m_formAdoChart); // as for the diagrams
}

void Program::openOptions(int diagram, OptionTab tab)
{
    showDiagrams();
    m_dialogs.openOptions(diagram, tab);
}

void Program::openHistoryLimits()
{
    showGenerator();
    m_dialogs.openHistoryLimits();
}

static DiagramCapture captureOf(Form1 &form)
{
    return [&form](const Diagrama &record) { return form.capture(record); };
}

void Program::saveImages()
{
    if (!m_form1)
        return;
    saveDiagramImages({m_station, captureOf(*m_form1), m_environment.clock, m_environment.shell,
                       m_environment.op});
}

void Program::print()
{
    if (!m_form1)
        return;
    printDiagrams({m_station, captureOf(*m_form1), m_environment.printers, m_environment.op,
                   m_environment.clock});
}

void Program::showAboutBox()
{
    if (!m_aboutBox)
        m_aboutBox = new AboutBox(texts::app::applicationTitle(), QStringLiteral(STATION_VERSION),
                                  systemInformationTool(), m_environment.op, &m_window);
    m_aboutBox->show();
    m_aboutBox->activateWindow();
}

void Program::openArchiveFolder()
{
    m_environment.shell.open(m_station.archiveFolder(), Shell::Window::Normal);
}

void Program::openHelp()
{
    try {
        m_environment.shell.open(m_station.helpPath(), Shell::Window::Normal);
    } catch (const RuntimeError &error) {
        m_environment.op.tell(error.description(), Operator::Icon::Critical);
    }
}

void Program::layOut(const QWidget *only)
{
    const auto wanted = [&](const QWidget *form) { return !only || only == form; };
    if (m_station.diagramsOpen && wanted(m_form1))
        m_form1->aranjare_diagrame(m_window.innerSize());
    if (m_station.FormMdbDeschis && wanted(m_formMdb))
        m_formMdb->aranjare();
    if (m_station.historyOpen && wanted(m_formAdoChart))
        m_formAdoChart->followMainWindow(m_window.innerSize());
}

bool Program::closingDialogue()
{
    switch (m_environment.op.ask(texts::program::askArchiveNow())) {
    case Operator::Answer::Cancel:
        return false;
    case Operator::Answer::Yes:
        archiveStorage();
        break;
    case Operator::Answer::No:
        break;
    }
    halt();
    m_controlPlc->close();
    m_controlPlc->setParent(nullptr);
    m_environment.endProgram();
    return true;
}
