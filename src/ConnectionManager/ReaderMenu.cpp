#include "ReaderMenu.h"

#include "Languages.h"

using CardHost::Reader;
using Languages::text;

namespace {

const char *stateId(Reader::State state)
{
    switch (state) {
    case Reader::State::Card:
        return "IDS_CM_READER_CARD";
    case Reader::State::Mute:
        return "IDS_CM_READER_MUTE";
    case Reader::State::InUse:
        return "IDS_CM_READER_IN_USE";
    case Reader::State::Empty:
        break;
    }
    return "IDS_CM_READER_EMPTY";
}

QString nameOf(const Reader &reader)
{
    return QString::fromStdString(reader.name);
}

} // namespace

ReaderMenu::ReaderMenu(QMenu *menu)
    : SourceMenu(menu)
{
    connect(this, &QActionGroup::triggered, this,
            [this](const QAction *action) { emit chosen(action->data().toString()); });
}

void ReaderMenu::setReaders(const CardHost::ReaderList &list)
{
    m_list = list;
    follow();
    fill();
}

void ReaderMenu::use(const QString &nameStart)
{
    m_nameStart = nameStart;
    m_name.reset();
    setReaders(m_list);
}

void ReaderMenu::useNone()
{
    m_nameStart.reset();
    m_name.reset();
    fill();
}

QString ReaderMenu::line() const
{
    if (const Reader *reader = inUse())
        return lineOf(*reader);
    if (m_list.readers.empty() || !isUsed())
        return lineOfNone();
    return text("IDS_CM_READER")
        .arg(Languages::leftToRight(*m_nameStart), text("IDS_CM_READER_GONE"));
}

// The first reader that fits and, where any would do, that has a card; a card is stayed with.
void ReaderMenu::follow()
{
    const Reader *before = inUse();
    if (!isUsed() || (before && before->state != Reader::State::Empty))
        return;
    m_name.reset();
    for (const Reader &reader : m_list.readers) {
        if (!nameOf(reader).startsWith(*m_nameStart))
            continue;
        const bool isTheOne = !m_nameStart->isEmpty() || reader.state != Reader::State::Empty;
        if (!m_name || isTheOne)
            m_name = nameOf(reader);
        if (isTheOne)
            return;
    }
}

QList<SourceMenu::Line> ReaderMenu::lines() const
{
    QList<Line> all;
    for (const Reader &reader : m_list.readers)
        all << Line{lineOf(reader), nameOf(reader), &reader == inUse()};
    return all;
}

const Reader *ReaderMenu::inUse() const
{
    for (const Reader &reader : m_list.readers) {
        if (m_name == nameOf(reader))
            return &reader;
    }
    return nullptr;
}

QString ReaderMenu::lineOf(const Reader &reader) const
{
    // The one who keeps the card in use for itself may be this program.
    const bool isOurs = answers() && &reader == inUse();
    const char *const state = stateId(isOurs ? Reader::State::Card : reader.state);
    return text("IDS_CM_READER").arg(Languages::leftToRight(nameOf(reader)), text(state));
}

QString ReaderMenu::lineOfNone() const
{
    return text("IDS_CM_NO_READER")
        .arg(m_list.problem ? text(*m_list.problem) : text("IDS_CM_READER_NONE"));
}
