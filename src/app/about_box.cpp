#include "app/about_box.h"
#include "app/about_texts.h"
#include "platform/operator.h"
#include "platform/runtime_error.h"
#include "platform/system_information.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
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
    font.setPointSizeF(1.6 * font.pointSizeF());
    font.setBold(true);
    label->setFont(font);
    return label;
}

QString libraryList()
{
    const QStringList libraries{
        texts::app::library(QStringLiteral("Qt"), QString::fromLatin1(qVersion()),
                            QStringLiteral("GNU LGPL v3, © The Qt Company Ltd.")),
        texts::app::library(QStringLiteral("QCustomPlot"), QStringLiteral(QCUSTOMPLOT_VERSION_STR),
                            QStringLiteral("GNU GPL v3, © Emanuel Eichhammer")),
    };
    return libraries.join(QLatin1Char('\n'));
}

} // namespace

AboutBox::AboutBox(const QString &title, const QString &version, const QString &systemTool,
                   Operator &op, QWidget *parent)
    : QDialog(parent), m_operator(op)
{
    setObjectName(QStringLiteral("frmAbout"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(texts::app::aboutCaption(title));

    auto *libraries = new QGroupBox(texts::app::librariesUsed());
    auto *list = new QVBoxLayout(libraries);
    list->addWidget(textLabel(QStringLiteral("lblLibraries"), libraryList()));
    list->addWidget(textLabel(QStringLiteral("lblLicence"), texts::app::ownLicence()));

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    QPushButton *system =
        buttons->addButton(texts::app::systemInformation(), QDialogButtonBox::ActionRole);
    system->setObjectName(QStringLiteral("cmdSysInfo"));
    system->setVisible(!systemTool.isEmpty());
    connect(system, &QPushButton::clicked, this, [=, this] { cmdSysInfo_Click(systemTool); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto *column = new QVBoxLayout(this);
    column->addWidget(titleLabel(title));
    column->addWidget(textLabel(QStringLiteral("lblVersion"), texts::app::version(version)));
    column->addWidget(textLabel(QStringLiteral("lblDescription"), texts::app::aboutDescription()));
    column->addWidget(libraries);
    column->addWidget(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
}

void AboutBox::cmdSysInfo_Click(const QString &systemTool)
{
    try {
        startSystemInformation(systemTool);
    } catch (const RuntimeError &) {
        m_operator.tell(texts::app::systemInformationMissing(), Operator::Icon::Critical);
    }
}
