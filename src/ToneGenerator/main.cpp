#include <cstdlib>
#include <fstream>
#include <iostream>

#include "Tones.h"

/* ToneGenerator NUMBER FILE */
int main(int argc, char **argv)
{
    const Tone *const tone = argc == 3 ? findTone(std::atoi(argv[1])) : nullptr;
    if (!tone) {
        std::cerr << "ToneGenerator: the number of a tone and the name of a file expected\n";
        return 2;
    }
    std::ofstream file(argv[2], std::ios::binary);
    file << wavFile(render(*tone)) << std::flush;
    if (!file) {
        std::cerr << "ToneGenerator: cannot write " << argv[2] << '\n';
        return 2;
    }
    return 0;
}
