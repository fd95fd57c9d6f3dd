#include "StatusItemRules.hpp"

#include "Fmt.hpp"
#include "MenuGlyph.hpp"
#include "StageStore.hpp"

namespace scrimlet::StatusItemRules {

StatusItemLook look(const StageStore& store) {
    StatusItemLook out;
    out.live = store.phase().kind() == ShowPhase::Case::live;
    out.standby = store.countdown().has_value();
    out.templateImage = MenuGlyph::isTemplate(out.live);
    out.glyphDescription = std::string(MenuGlyph::accessibilityDescription(out.live));
    const auto elapsed = store.show().elapsed();
    if (out.live && store.settings().showTimerInMenuBar && elapsed) {
        // A show with a time limit counts down; one without counts up.
        const double time = store.show().remaining().value_or(*elapsed);
        out.title = " " + Fmt::clock(time);
        out.titleFont = Font::system(12, FontWeight::medium).withMonospacedDigits();
    } else if (out.standby) {
        out.title = " " + std::to_string(*store.countdown());
        out.titleFont = Font::system(12, FontWeight::semibold).withMonospacedDigits();
    }
    // Standby reads "Off" too, as it always has: only a live show is on stage.
    out.accessibilityValue = out.live ? "On stage" : "Off";
    return out;
}

Click decide(const std::optional<StatusClickEvent>& event) {
    if (!event || !(event->modifierFlags & optionFlag) || event->type != leftMouseUp) {
        return Click::toggleDropdown;
    }
    return Click::startOrStop;
}

void startOrStop(StageStore& store) {
    if (store.show().isDark()) {
        store.startShow(std::string(optionClickHow));
    } else {
        store.stopShow();
    }
}

} // namespace scrimlet::StatusItemRules
