#include "acquisition/form_eroare.h"
#include "acquisition/texts.h"
#include "app/settings/station.h"
#include "app/texts.h"
#include "platform/runtime_error.h"
#include "platform/twips.h"
#include "platform/window_frame.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace
{

constexpr int kIconTwips = 700;
constexpr int kMargin = 16;
constexpr int kMessageWidth = 280;
constexpr int kButtonWidth = 96;
constexpr int kInvalidPicture = 481;

QPixmap warningIcon(const QString &path)
{
    if (!QFileInfo::exists(path))
        throw RuntimeError(RuntimeError::FileNotFound);
    const int side = pixelsFromTwips(kIconTwips);
    const QPixmap icon = QIcon(path).pixmap(256);
    if (icon.isNull())
        throw RuntimeError(kInvalidPicture, QStringLiteral("Invalid picture"));
    return icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

FormEroare::FormEroare(const Station &station, QSize screenTwips, QWidget *parent)
    : QWidget(parent), m_screen(screenTwips), m_message(new QLabel),
      m_ok(new QPushButton(texts::app::okButton()))
{
    setObjectName(QStringLiteral("FormEroare"));
    auto *picture = new QLabel;
    picture->setObjectName(QStringLiteral("WarningPicture"));
    picture->setPixmap(warningIcon(station.warningIconPath()));
    m_message->setObjectName(QStringLiteral("EroareLabel"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->setMinimumWidth(kMessageWidth);
    m_ok->setObjectName(QStringLiteral("OKButton"));
    m_ok->setMinimumWidth(kButtonWidth);
    m_ok->setAutoDefault(true);
    connect(m_ok, &QPushButton::clicked, this, [this] { frameOf(*this)->close(); });

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kMargin);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(0, 1);
    layout->addWidget(picture, 0, 0);
    layout->addWidget(m_message, 0, 1);
    layout->addWidget(m_ok, 1, 0, 1, 2, Qt::AlignCenter);
}

void FormEroare::arata_eroare(QWidget &callingForm, const QString &message)
{
    m_message->setText(message);
    setWindowTitle(callingForm.windowTitle());
    frameOf(callingForm)->setEnabled(false);
    m_callingForm = &callingForm;
    QWidget *frame = frameOf(*this);
    frame->show();
    frame->raise();
    m_ok->setFocus();
}

void FormEroare::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) // not when it was only minimised
        centreOnScreen(*this, m_screen);
}

void FormEroare::closeEvent(QCloseEvent *event)
{
    if (m_callingForm)
        frameOf(*m_callingForm)->setEnabled(true);
    QWidget::closeEvent(event);
}

void FormEroare::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        m_ok->click();
    else
        QWidget::keyPressEvent(event);
}
