#pragma once

#include "Platform/X11/Connection.h"
#include "Platform/X11/ServerObject.h"

#include <functional>
#include <vector>

namespace quillon::x11 {

/// Predicts which areas of a picture the next frame changes. To draw a scaled picture one has to ask the server what
/// has changed, and to wake up for the answer; for a source that keeps changing the same areas the answer is known.
/// Should a frame change something else as well, the server tells. Areas are in the picture's pixels. Main thread.
class ExpectedChange {
public:
    using Handler = std::function<void(xcb_xfixes_region_t)>;

    /// The handler is called with what frames have changed besides what was expected of them. The region changes with
    /// the next call of a member. The connection must outlive this object.
    ExpectedChange(Connection& connection, Handler changedMore);

    /// The answer for a frame: these areas of a picture of that size have changed.
    void learn(std::vector<PixelRect> areas, int width, int height);
    /// Another picture is shown.
    void forget();
    /// What the next frame is taken to change; null when the server has to be asked. `changed` is what it has really
    /// changed.
    [[nodiscard]] const std::vector<PixelRect>* expect(xcb_xfixes_region_t changed);

private:
    void prepare(int width, int height);
    void tellWhatIsLeft();

    Connection& connection;
    Handler changedMore;
    std::vector<PixelRect> areas;
    /// How many frames in a row are taken for the same, and how many were since the last answer.
    int mostExpected = 0;
    int expected = 0;
    /// Nothing can change besides.
    bool isWhole = false;
    Region expectedRegion;
    /// What a frame has changed besides.
    Region rest;
    /// Nothing is drawn into it. It is as large as the picture, and what is added to its damage is announced.
    Pixmap blank;
    int blankWidth = 0;
    int blankHeight = 0;
    Damage damage;
    RegistrationToken damageEvents;
};

} // namespace quillon::x11
