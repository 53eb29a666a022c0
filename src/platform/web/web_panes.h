#pragma once
#include "platform/web/web_pane.h"

#include <array>

/// The panes of the page, by PaneId. It has no debugger, whose pane stays empty.
class WebPanes {
public:
    explicit WebPanes(WebContext& context)
        : panes_{WebPane(context, PaneId::picture),  WebPane(context, PaneId::monitor),
                 WebPane(context, PaneId::film_bar), WebPane(context, PaneId::overlay),
                 WebPane(context, PaneId::keyboard), WebPane(context, PaneId::debugger)} {}
    WebPane& pane(PaneId id) { return panes_[size_t(id)]; }

private:
    std::array<WebPane, PANES> panes_;
};

/// There is one page.
WebPanes& web_panes();
