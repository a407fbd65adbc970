// The main menu: every item once, with its name, its caption and its command, and which of them
// need the diagrams.

#include "diagrams/texts.h"
#include "program/program.h"

std::vector<MenuItem> Program::menu()
{
    const auto run = [this](void (Program::*method)()) {
        return [this, method] { (this->*method)(); };
    };
    const auto options = [this](int diagram, OptionTab tab) {
        return [this, diagram, tab] { openOptions(diagram, tab); };
    };
    const auto names = [this](int diagram) {
        return [this, diagram] { m_dialogs.openSensorNames(diagram); };
    };
    const auto calibration = [this] { m_dialogs.openCalibration(); };
    using enum MenuItem::Kind;
    return {
        {Submenu, "MeniuFisier", "Fisiere"},
        {InSubmenu, "DeschidMdbCurent", "&Deschide baze date curente", run(&Program::showBrowser)},
        {InSubmenu, "DeschidMdbArhiva", "Deschide &arhiva", run(&Program::openArchiveFolder)},
        {InSubmenu, "DeschidDiag", "Deschide diag&ramele", run(&Program::showDiagrams)},
        {InSubmenu, "DeschidGenerator", "Deschide &generator diagrame",
         run(&Program::showGenerator)},
        {InSubmenu, "DeschidCentruControl", "Deschide &centrul de control",
         run(&Program::showControlCentre)},
        {InSubmenu, "SalvareArh", "&Salvare arhive baze de date", run(&Program::archiveStorage)},
        {InSubmenu, "SalvareImg", "Salvare &imagine diagrame", run(&Program::saveImages)},
        {InSubmenu, "ExitProg", "&Iesire", [this] { closingDialogue(); }},
        {Submenu, "MeniuTemp", texts::diagrams::diagramOfSensors(0)},
        {InSubmenu, "LimitTempGraf", "Setare &limite grafic", options(0, OptionTab::GraphLimits)},
        {InSubmenu, "AlarmTempGraf", "Setare &alarme", options(0, OptionTab::Alarms)},
        {InSubmenu, "ScanTempGraf", "Setare &optiuni scanare", options(0, OptionTab::ScanOptions)},
        {InSubmenu, "mnuNumeSenzori1", "Setare &nume senzori", names(0)},
        {Submenu, "MeniuPres", texts::diagrams::diagramOfSensors(1)},
        {InSubmenu, "LimitPresGraf", "Setare &limite grafic", options(1, OptionTab::GraphLimits)},
        {InSubmenu, "AlarmPresGraf", "Setare &alarme", options(1, OptionTab::Alarms)},
        {InSubmenu, "ScanPresGraf", "Setare &optiuni scanare", options(1, OptionTab::ScanOptions)},
        {InSubmenu, "mnuNumeSenzori2", "Setare &nume senzori", names(1)},
        {TopCommand, "MeniuIstoric", "Istoric Diagrame", run(&Program::openHistoryLimits)},
        {TopCommand, "MeniuCalib", "Calibrare senzori", calibration},
        {Submenu, "MeniuPrint", "Printare"},
        {InSubmenu, "PrintDiag", "&Printare diagrame", run(&Program::print)},
        {Submenu, "MeniuDespre", "Help"},
        {InSubmenu, "DocProg", "&Documentatie", run(&Program::openHelp)},
        {InSubmenu, "DespreProg", "Despre &program", run(&Program::showAboutBox)},
    };
}

void Program::activare_meniuri_diagrame(bool enabled)
{
    for (const char *item : {"MeniuPres", "MeniuPrint", "MeniuTemp", "SalvareImg"})
        m_window.setItemEnabled(QString::fromLatin1(item), enabled);
}
