#pragma once

#include <QPointer>
#include <QSize>
#include <QWidget>

class QLabel;
class QPushButton;
struct Station;

/// The error window of the options dialogs: shows a message and keeps the dialog that caused it
/// disabled until the operator has answered.
class FormEroare : public QWidget
{
    Q_OBJECT
public:
    /// The window is centred on a screen of that size, in twips. Throws RuntimeError 53
    /// when the station's warning icon is missing, 481 when it is not a picture.
    FormEroare(const Station &station, QSize screenTwips, QWidget *parent = nullptr);

    /// Disables the calling form and shows the message under that form's caption. OK, or closing
    /// the window otherwise, enables the form again.
    void arata_eroare(QWidget &callingForm, const QString &message);

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QSize m_screen;
    QPointer<QWidget> m_callingForm;
    QLabel *m_message;
    QPushButton *m_ok;
};
