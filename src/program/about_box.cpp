#include "program/about_box.h"
#include "platform/operator.h"
#include "platform/system_information.h"
#include "program/texts.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScreen>
#include <QSysInfo>
#include <QVBoxLayout>
#include <qcustomplot.h>

namespace
{

constexpr int kTextWidth = 460; // pixels

QLabel *textLabel(const QString &name, const QString &text)
{
    auto *label = new QLabel(text);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    label->setMinimumWidth(kTextWidth);
    return label;
}

QLabel *titleLabel(const QString &text)
{
    QLabel *label = textLabel(QStringLiteral("lblTitle"), text);
    QFont font = label->font();
    font.setPointSizeF(QFontInfo(font).pointSizeF() * 1.6); // a desktop may give it in pixels
    font.setBold(true);
    label->setFont(font);
    return label;
}

QString libraryList()
{
    const QStringList libraries{
        texts::program::library(QStringLiteral("Qt"), QString::fromLatin1(qVersion()),
                                QStringLiteral("GNU LGPL v3, © The Qt Company Ltd.")),
        texts::program::library(QStringLiteral("QCustomPlot"),
                                QStringLiteral(QCUSTOMPLOT_VERSION_STR),
                                QStringLiteral("GNU GPL v3, © Emanuel Eichhammer")),
    };
    return libraries.join(QLatin1Char('\n'));
}

QString systemFacts(const QScreen &screen)
{
    const QSize pixels = screen.size() * screen.devicePixelRatio();
    const QLocale locale = QLocale::system();
    const QStringList facts{
        texts::program::operatingSystem(QSysInfo::prettyProductName()),
        texts::program::kernel(QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                               QSysInfo::currentCpuArchitecture()),
        texts::program::memory(locale.formattedDataSize(physicalMemory(), 1)),
        texts::program::screen(pixels.width(), pixels.height(),
                               qRound(screen.logicalDotsPerInch())),
        texts::program::language(locale.name()),
    };
    return facts.join(QLatin1Char('\n'));
}

} // namespace

AboutBox::AboutBox(const QString &title, const QString &version, const QString &systemTool,
                   Operator &op, QWidget *parent)
    : QDialog(parent), m_operator(op)
{
    setObjectName(QStringLiteral("frmAbout"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(texts::program::aboutCaption(title));

    auto *libraries = new QGroupBox(texts::program::librariesUsed());
    auto *list = new QVBoxLayout(libraries);
    list->addWidget(textLabel(QStringLiteral("lblLibraries"), libraryList()));
    list->addWidget(textLabel(QStringLiteral("lblLicence"), texts::program::ownLicence()));

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    QPushButton *system =
        buttons->addButton(texts::program::systemInformation(), QDialogButtonBox::ActionRole);
    system->setObjectName(QStringLiteral("cmdSysInfo"));
    connect(system, &QPushButton::clicked, this, [=, this] { cmdSysInfo_Click(systemTool); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto *column = new QVBoxLayout(this);
    column->addWidget(titleLabel(title));
    column->addWidget(textLabel(QStringLiteral("lblVersion"), texts::program::version(version)));
    column->addWidget(
        textLabel(QStringLiteral("lblDescription"), texts::program::aboutDescription()));
    column->addWidget(libraries);
    column->addWidget(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
}

void AboutBox::cmdSysInfo_Click(const QString &systemTool)
{
    if (!startSystemInformation(systemTool))
        m_operator.tell(systemFacts(*screen()));
}
