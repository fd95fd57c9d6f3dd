#include "CommandLine.hpp"
#include "NameCollation.hpp"

#include <iostream>

int main(int argc, char** argv) {
    const auto& environment = scrimlet::Harness::env();
    if (auto order = scrimlet::NameCollation::userOrder(environment)) {
        scrimlet::CueSheet::nameOrder = std::move(*order);
    }
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return scrimlet::CommandLine::run(arguments, environment, std::cout, std::cerr);
}
