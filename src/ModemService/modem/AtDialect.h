#ifndef ATDIALECT_H
#define ATDIALECT_H

#include <string>

/// The names of the toolkit's commands and lines on an AT port: those of 3GPP TS 27.007 clause 12,
/// or a maker's own.
struct AtDialect {
    std::string profileRead = "+CUSATR";
    std::string profileWrite = "+CUSATW";
    std::string download = "+CUSATD";
    std::string activate = "+CUSATA";
    std::string envelope = "+CUSATE"; ///< its answer's, too
    std::string response = "+CUSATT";
    std::string command = "+CUSATP"; ///< unsolicited: a proactive command
    std::string state = "+CUSATS"; ///< unsolicited: the state of the toolkit
    std::string end = "+CUSATEND"; ///< unsolicited: the proactive session is over
    std::string envelopeAnswerToo = "+CUSATER"; ///< some say it so
    std::string envelopeStatus = "+CUSATE2";
};

/// Reads a JSON object that has another name for some of the standard's.  Throws a
/// StrictJson::Error: one line that names the file, the place in it, what was expected and what was
/// found.
AtDialect readAtDialect(const std::string &file);

#endif
