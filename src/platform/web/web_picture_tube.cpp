#include "platform/web/web_picture_tube.h"

#include "platform/web/web_page.h"
#include "platform/web/web_panes.h"

#include <emscripten/emscripten.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

WebPictureTube& web_picture_tube() {
    static WebPictureTube tube;
    return tube;
}

std::string WebPictureTube::start() {
    if (ready_) return {};
    const auto problem = ask_page("tube.start");
    started_ = ready_ = !problem;
    if (ready_ && !compile(TubeLook::soft)) return "WebGL does not take the picture tube";
    return problem.value_or("");
}

void WebPictureTube::stop() {
    cover();
    started_ = ready_ = false;
    look_ = TubeLook::off;
    call_page("tube.stop");
}

int64_t WebPictureTube::take_draw_time() {
    return started_ ? int64_t(call_page("tube.takeDrawTime")) : 0;
}

bool WebPictureTube::compile(TubeLook look) {
    if (look == look_) return true;
    // A page's canvas begins with its lowest row, textures with the picture's first one.
    std::vector<std::string> texts;
    for (const TubeStage stage : {TubeStage::glow_across, TubeStage::glow_down, TubeStage::face}) {
        const TubeHost host{.top_first = stage != TubeStage::face};
        texts.push_back(tube_vertex_text(host, stage, look));
        texts.push_back(tube_fragment_text(host, stage, look));
    }
    ready_ = call_page("tube.compile", texts, TUBE_GLOW.width, TUBE_GLOW.height) != 0;
    look_ = ready_ ? look : TubeLook::off;
    return ready_;
}

bool WebPictureTube::draw(const CanvasPixels& picture, TubeRows changed, const Rectangle& area,
                          const Scaling& how) {
    if (!ready_) return false;
    const bool other_look = how.tube != look_;
    if (!compile(how.tube)) return false;
    const bool all = !shown_ || other_look || area != area_ || picture.size != from_;
    const Size from = picture.size;
    if (all) changed = {0, from.height};
    const TubeRows glow = tube_glow_rows(changed, from.height);
    const TubeRows face = all ? TubeRows{0, area.height()}
                              : tube_face_rows(changed, from.height, area.height(), how.tube);
    shown_ = true;
    area_ = area;
    from_ = from;
    const auto* const bytes = reinterpret_cast<const uint8_t*>(picture.row(changed.first));
    const size_t row = size_t(from.width) * sizeof(uint32_t);
    give_page(
        "tube.draw", {bytes, row * size_t(changed.end - changed.first)},
        std::vector<int>{area.left, area.top, area.width(), area.height()}, from.width, from.height,
        how.lines,
        std::vector<int>{changed.first, changed.end, glow.first, glow.end, face.first, face.end});
    return true;
}

void WebPictureTube::cover() {
    if (std::exchange(shown_, false)) call_page("tube.hide");
}

void WebPictureTube::lost(bool restored) {
    if (!started_) return;
    cover();
    look_ = TubeLook::off;
    ready_ = restored;
    web_panes().pane(PaneId::picture).forget();
    web_context().post(Event::Kind::paint);
}

/// The page has lost its graphics processor, or got it back.
extern "C" EMSCRIPTEN_KEEPALIVE void tarvelin_tube_lost(int restored) {
    web_picture_tube().lost(restored != 0);
}
