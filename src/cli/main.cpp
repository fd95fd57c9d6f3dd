#include "CommandLine.hpp"

#include <iostream>

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return scrimlet::CommandLine::run(arguments, scrimlet::Harness::env(), std::cout, std::cerr);
}
