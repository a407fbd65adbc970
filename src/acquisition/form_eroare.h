#pragma once

#include <QList>
#include <QSize>
#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;
struct Station;

/// The error window of the options dialogs: shows a message and keeps the dialog that caused it
/// disabled until the operator has answered.
class FormEroare : public QWidget
{
    Q_OBJECT
public:
    /// The open forms: the windows of the main window in their order, then all others.
    using OpenForms = std::function<QList<QWidget *>()>;

    /// The window stands in the middle of a screen of that size, in twips. Throws RuntimeError 53
    /// when the station's warning icon is missing, 481 when it is not a picture.
    FormEroare(const Station &station, OpenForms openForms, QSize screenTwips,
               QWidget *parent = nullptr);

    /// Disables the calling form and shows the message under that form's caption. OK, or closing
    /// the window otherwise, enables the first open form with that caption again.
    void arata_eroare(QWidget &callingForm, const QString &message);

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void enableCallingForm();

    OpenForms m_openForms;
    QSize m_screen;
    QLabel *m_message;
    QPushButton *m_ok;
};
