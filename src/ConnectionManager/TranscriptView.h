#ifndef TRANSCRIPTVIEW_H
#define TRANSCRIPTVIEW_H

#include <QPlainTextEdit>

#include "CardHost.h"

/// The last lines of the transcript, for people.  Where its end is in sight, it stays so.
class TranscriptView : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit TranscriptView(QWidget *parent);

    void add(const CardHost::TranscriptEntry &entry);

private:
    void followEnd();

    bool m_showsEnd = true;
};

#endif
