#ifndef URLBAR_H
#define URLBAR_H

#include <QBoxLayout>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

class UrlRequests;

/// A line that asks what becomes of the address that waits, and keeps nobody from anything else;
/// hidden while none waits.
class UrlBar : public QFrame {
    Q_OBJECT

public:
    /// The buttons stand beside the text, or below it where there is little width.
    UrlBar(UrlRequests &requests, QBoxLayout::Direction direction, QWidget *parent);

    void retranslate();

    QPushButton *openButton() const { return m_open; }
    QPushButton *alwaysButton() const { return m_always; }
    QPushButton *declineButton() const { return m_decline; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QLabel *addLine(QLayout *layout);
    QPushButton *addButton(QLayout *layout, void (UrlRequests::*answer)());
    void follow();
    void allowAnswers(bool allow);
    void showAddress();

    UrlRequests &m_requests;
    QLabel *m_question;
    QLabel *m_host;
    QLabel *m_address;
    QPushButton *m_open;
    QPushButton *m_always;
    QPushButton *m_decline;
    QTimer m_pause;
};

#endif
