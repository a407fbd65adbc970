#include "tests/acquisition/acquisition_rig.h"

Station sampleStation()
{
    Station station;
    station.monitorActive = true;
    station.diagramsOpen = true;
    station.NumeFisier[0] = QStringLiteral("autoclava1.mdb");
    station.Diagrame.resize(2);
    for (Diagrama &diagram : station.Diagrame) {
        diagram.alarma_minim = 10;
        diagram.alarma_maxim = 138;
        diagram.interval_scanare = 1;
    }
    station.sensors.resize(6);
    for (std::size_t i = 0; i < station.sensors.size(); ++i) {
        station.sensors[i].calibrationText = QStringLiteral("0");
        station.sensors[i].diagram = static_cast<quint8>(i / 3);
    }
    return station;
}

QByteArray replyWith(const QStringList &fields)
{
    QString reply(22, QLatin1Char('#'));
    for (const QString &field : fields)
        reply += QStringLiteral("5555555555555555.") + field.rightJustified(10);
    return reply.toLatin1() + "\r\n";
}

AcquisitionRig::AcquisitionRig()
    : exchange(std::make_unique<Exchange>(station, line, time, op)),
      cycle(std::make_unique<MonitoringCycle>(station, *exchange, *this, *this, time, time))
{
}

void AcquisitionRig::adauga_inregistrare(const QString &name)
{
    log += name;
    records.push_back(time.now());
    if (whenStored)
        whenStored();
}

void AcquisitionRig::arhiveaza_baza_date(const QString &name)
{
    log += "archive " + name;
    archives.push_back(time.now());
    if (whenArchived)
        whenArchived();
}

void AcquisitionRig::answerAfter(milliseconds delay)
{
    m_answer = time.createTimer(QStringLiteral("recorder"), [this] { line.arrive(reply); });
    line.onWrite = [this, delay](const QByteArray &command) {
        if (command.startsWith("FM0"))
            m_answer->start(delay);
    };
}
