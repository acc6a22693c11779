#include <vxr/platform/views/ScrollView.h>

namespace vxr {

ScrollView::ScrollView(const Rect& frame)
    : View(frame)
    , mClipView(std::make_shared<ClipView>(bounds()))
{
    addSubview(mClipView);
}

void ScrollView::setFrame(const Rect& frame)
{
    View::setFrame(frame);
    mClipView->setFrame(bounds());
}

} // namespace vxr
