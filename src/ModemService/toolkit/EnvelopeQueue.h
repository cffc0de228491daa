#ifndef ENVELOPEQUEUE_H
#define ENVELOPEQUEUE_H

#include <cstdint>
#include <deque>
#include <optional>

#include "ToolkitPort.h"

/// What is to be told to the card between its proactive sessions: the choice from its menu, and
/// then, in order, what happened.
class EnvelopeQueue {
public:
    /// In place of a choice that is still here.
    void select(uint8_t item) { m_selection = item; }
    bool hasSelection() const { return m_selection.has_value(); }
    /// Nothing where there is none; those that are too many are left out.
    void add(std::optional<PortEnvelope> envelope);

    bool isEmpty() const { return !m_selection && m_envelopes.empty(); }
    PortEnvelope take();
    /// Something has followed the choice that was taken.
    void selectionFollowed() { m_selectionTaken = false; }
    /// The choice is not wanted any more.  True where it was taken, and nothing has followed it.
    bool dropSelection();

private:
    std::optional<uint8_t> m_selection;
    bool m_selectionTaken = false;
    std::deque<PortEnvelope> m_envelopes;
};

#endif
