#ifndef CARDCOMMANDS_H
#define CARDCOMMANDS_H

#include <vector>

/// A proactive command that a person can have the card send, to see what the terminal does with it.
struct CardCommand {
    const char *name; ///< as in ETSI TS 102 223; neighbours of one name are ways of one command
    const char *wayId; ///< identifier of the text that tells the ways apart; null for the only one
    const char *json; ///< as in a card scenario
};

/// Every command, in the order of a menu.
const std::vector<CardCommand> &cardCommands();

#endif
