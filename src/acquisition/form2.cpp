#include "acquisition/form2.h"
#include "acquisition/monitoring_cycle.h"
#include "acquisition/texts.h"
#include "app/settings/station.h"

#include <QCloseEvent>
#include <QFontInfo>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static constexpr int kMargin = 14;
static constexpr int kSpacing = 8;
static constexpr int kButtonWidth = 220;
static constexpr int kButtonHeight = 34;
static constexpr int kLabelHeight = 52;

Form2::Form2(MonitoringCycle &cycle, const Station &station, WindowPosition &position,
             QWidget *parent)
    : QWidget(parent), m_cycle(cycle), m_station(station), m_position(position),
      m_monLabel(new QLabel)
{
    setObjectName(QStringLiteral("Form2"));
    setWindowTitle(texts::acquisition::controlCentre());

    m_monLabel->setObjectName(QStringLiteral("MonLabel"));
    m_monLabel->setAutoFillBackground(true);
    m_monLabel->setAlignment(Qt::AlignCenter);
    m_monLabel->setFrameShape(QFrame::Box);
    m_monLabel->setMinimumHeight(kLabelHeight);
    m_monLabel->setMargin(kMargin / 2);
    QFont font = m_monLabel->font();
    font.setBold(true);
    font.setPointSizeF(QFontInfo(font).pointSizeF() * 1.4); // a desktop may give it in pixels
    m_monLabel->setFont(font);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kSpacing);
    layout->addWidget(m_monLabel);
    layout->addSpacing(kSpacing);
    addButton(QStringLiteral("InitDiagCommand"), texts::acquisition::initDiagrams(),
              &Form2::InitDiagCommand_Click);
    addButton(QStringLiteral("StartMonCommand"), texts::acquisition::startMonitoring(),
              &Form2::StartMonCommand_Click);
    addButton(QStringLiteral("StopMonCommand"), texts::acquisition::stopMonitoring(),
              &Form2::StopMonCommand_Click);
    layout->addStretch();

    connect(&m_cycle, &MonitoringCycle::stateChanged, this, &Form2::scrie_stare_monitor);
    scrie_stare_monitor();
}

void Form2::addButton(const QString &name, const QString &caption, void (Form2::*handler)())
{
    auto *button = new QPushButton(caption);
    button->setObjectName(name);
    button->setMinimumSize(kButtonWidth, kButtonHeight);
    button->setAutoDefault(true); // Enter presses the button that has the focus
    connect(button, &QPushButton::clicked, this, handler);
    layout()->addWidget(button);
}

void Form2::StartMonCommand_Click()
{
    m_cycle.start();
}

void Form2::StopMonCommand_Click()
{
    m_cycle.stop();
}

void Form2::InitDiagCommand_Click()
{
    m_cycle.stopAndClearDiagrams();
}

void Form2::scrie_stare_monitor()
{
    const bool active = m_station.monitorActive;
    QPalette colours = m_monLabel->palette();
    colours.setColor(QPalette::Window, active ? QColor(0, 255, 0) : QColor(255, 0, 0));
    colours.setColor(QPalette::WindowText, Qt::black);
    m_monLabel->setPalette(colours);
    m_monLabel->setText(active ? texts::acquisition::monitorActive()
                               : texts::acquisition::monitorStopped());
}

void Form2::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_placed) // shown again after it was minimised
        return;
    m_placed = true;
    m_position.restore(*this);
}

void Form2::closeEvent(QCloseEvent *event)
{
    m_position.save(*this);
    QWidget::closeEvent(event);
}
