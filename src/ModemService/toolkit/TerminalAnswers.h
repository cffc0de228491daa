#ifndef TERMINALANSWERS_H
#define TERMINALANSWERS_H

#include <chrono>
#include <optional>
#include <string>

#include "session/ProactiveCommand.h"
#include "cat/Command.h"
#include "cat/Response.h"

// Terminal responses to a proactive command (ETSI TS 102 223 clause 6.8).

/// Without data; an icon that the command came with was not shown.
cat::Response responseWith(const cat::Command &command, cat::Result result);

/// The terminal is currently unable to do it.
cat::Response unable(const cat::Command &command, uint8_t cause);

/// What the user, or the window, answered.
cat::Response responseTo(const cat::Command &command, const TerminalResponse &answer);

/// The time that the user took is part of the answer to a GET INKEY that names one (clause 6.4.2).
void addElapsedTime(cat::Response &response, const cat::Command &command,
                    std::chrono::steady_clock::duration time);

bool isPerformed(const cat::Response &response);

/// For people.
std::string resultInWords(const cat::Response &response);

/// How many bytes at the end of the coded response nobody is to read: a hidden input.
size_t secretLength(const cat::Response &response, const cat::Command &command);

/// Whether a text stays until somebody clears it.
bool waitsForUser(const cat::Command &command);
/// How long somebody has to clear a text; 0 where nobody is to, or there is no limit.
std::chrono::milliseconds timeToClear(const cat::Command &command);
/// Whether nobody has cleared in time a text that somebody was to clear (clause 6.4.1).
bool isOverlooked(const cat::Command &command, const TerminalResponse &response,
                  std::chrono::steady_clock::duration time);

/// Whether a person did it.  Some answers are nobody's: a browser's, a tone's, those of a text that
/// clears itself.  `waited`: the text stood until somebody cleared it.
bool isUsersAct(const TerminalResponse &response, bool waited);

#endif
