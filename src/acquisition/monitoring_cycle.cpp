#include "acquisition/monitoring_cycle.h"
#include "acquisition/diagram_feed.h"
#include "acquisition/exchange.h"
#include "acquisition/sample.h"
#include "app/settings/schedule.h"
#include "platform/scheduler.h"
#include "storage/sample_store.h"

#include <algorithm>

using std::chrono::milliseconds;

namespace
{

constexpr milliseconds kLongestSleep{1000};
constexpr QTime kArchiveTime = QTime::fromMSecsSinceStartOfDay(((23 * 60 + 59) * 60 + 50) * 1000);
constexpr QTime kRearmTime = QTime::fromMSecsSinceStartOfDay(((23 * 60 + 59) * 60 + 51) * 1000);

bool isSecond(const QDateTime &now, QTime second)
{
    return second.msecsTo(now.time()) >= 0 && second.msecsTo(now.time()) < 1000;
}

milliseconds timeToNextMoment(const QDateTime &now, const QDateTime &nextSampling)
{
    qint64 sleep = std::min<qint64>(kLongestSleep.count(), now.msecsTo(nextSampling));
    for (const QTime moment : {kArchiveTime, kRearmTime})
        if (now.time() < moment)
            sleep = std::min<qint64>(sleep, now.time().msecsTo(moment));
    return milliseconds(std::max<qint64>(sleep, 0));
}

} // namespace

MonitoringCycle::MonitoringCycle(Station &station, Exchange &exchange, DiagramFeed &diagrams,
                                 SampleStore &store, const Clock &clock, Scheduler &scheduler,
                                 QObject *parent)
    : QObject(parent), m_station(station), m_exchange(exchange), m_diagrams(diagrams),
      m_store(store), m_clock(clock),
      m_wakeUp(scheduler.createTimer(QStringLiteral("MonitoringWakeUp"),
                                     [this] { ciclu_monitorizare(); }))
{
    connect(&exchange, &Exchange::finished, this, &MonitoringCycle::onExchangeFinished);
}

MonitoringCycle::~MonitoringCycle() = default;

void MonitoringCycle::start()
{
    m_station.nextSampling = m_clock.now();
    m_station.monitorActive = true;
    m_archivedDay = {};
    emit stateChanged();
    // A pass or an exchange under way continues with the new schedule.
    if (m_phase == Phase::Stopped || m_phase == Phase::Sleeping)
        ciclu_monitorizare();
}

void MonitoringCycle::stop()
{
    m_station.monitorActive = false;
    if (m_phase == Phase::Sleeping) {
        m_wakeUp->stop();
        m_phase = Phase::Stopped;
    }
    emit stateChanged();
}

void MonitoringCycle::stopAndClearDiagrams()
{
    stop();
    m_diagrams.showAtOrigin();
    m_diagrams.goleste_diagramele();
    emit stateChanged();
}

void MonitoringCycle::ciclu_monitorizare()
{
    endOnFailure([this] { pass(); });
}

void MonitoringCycle::pass()
{
    m_wakeUp->stop();
    if (!m_station.monitorActive) {
        end();
        return;
    }
    m_phase = Phase::Passing;
    const QDateTime begin = m_clock.now();
    archiveAtEndOfDay();
    if (!m_station.monitorActive) { // stopped from behind a message box of the archive
        end();
        return;
    }
    correctSchedule();
    if (begin < m_station.nextSampling) {
        sleepUntilNextMoment();
        return;
    }
    m_phase = Phase::Exchanging;
    m_exchange.interogare_aparat(QString::number(m_station.sensors.size()));
}

void MonitoringCycle::archiveAtEndOfDay()
{
    // If no pass falls into that second, because of a long exchange or a message box, the day is
    // not archived.
    const QDateTime now = m_clock.now();
    if (now.time() >= kRearmTime)
        m_archivedDay = {};
    // The day, not a flag: a run that misses the second of the reset still archives the next day.
    if (!isSecond(now, kArchiveTime) || m_archivedDay == now.date())
        return;
    m_archivedDay = now.date();
    m_store.arhiveaza_baza_date(storageName());
}

void MonitoringCycle::correctSchedule()
{
    // The clock was set back or the interval shortened: the old moment would be too far away.
    const QDateTime now = m_clock.now();
    if (avans_interval(m_station, now) < m_station.nextSampling)
        m_station.nextSampling = now;
}

void MonitoringCycle::sleepUntilNextMoment()
{
    m_phase = Phase::Sleeping;
    m_wakeUp->start(timeToNextMoment(m_clock.now(), m_station.nextSampling));
}

void MonitoringCycle::onExchangeFinished(bool failed)
{
    if (m_phase != Phase::Exchanging)
        return;
    if (failed)
        end();
    else
        endOnFailure([this] { takeSample(); });
}

void MonitoringCycle::takeSample()
{
    m_phase = Phase::Passing;
    completeSample(m_station, m_clock.now());
    if (m_station.diagramsOpen)
        m_diagrams.adauga_citiri(m_station.sensors);
    m_store.adauga_inregistrare(storageName());
    if (!m_station.monitorActive) { // the storage file is missing, or stopped from behind a message
        end();
        return;
    }
    calculeaza_urmatoarea_citire(m_station, m_clock.now());
    // The next pass begins from the event loop: the line's own handler has to return first.
    m_phase = Phase::Sleeping;
    m_wakeUp->start(milliseconds(0));
}

QString MonitoringCycle::storageName() const
{
    return m_station.NumeFisier[0];
}

void MonitoringCycle::end()
{
    m_station.monitorActive = false;
    m_phase = Phase::Stopped;
    emit stateChanged();
}

template <typename Step>
void MonitoringCycle::endOnFailure(Step step)
{
    try {
        step();
    } catch (...) {
        end();
        throw;
    }
}
