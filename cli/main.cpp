// velmora: the command-line host of the Velmora archive importer.
#include <iostream>

#include "cli/CommandLine.h"

int main(int argc, char** argv)
{
    return CommandLine::run(argc, argv, std::cout, std::cerr);
}
