#ifndef SAY_H
#define SAY_H

#include <iostream>
#include <string>

/// A line for whoever watches the program.
inline void say(const std::string &what)
{
    std::cout << "VirtualModem: " << what << std::endl;
}

#endif
