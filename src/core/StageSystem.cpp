#include "StageSystem.hpp"

namespace scrimlet {

StageError::StageError(Case c, std::string text)
    : case_(c) {
    switch (c) {
    case Case::failed:
        description_ = std::move(text);
        break;
    case Case::refusedInTestRun:
        description_ = "refused: test run";
        break;
    case Case::targetGone:
        description_ = "it's gone";
        break;
    }
}

std::optional<std::string> Availability::note() const {
    if (case_ == Case::ready) {
        return std::nullopt;
    }
    return text_;
}

} // namespace scrimlet
