#pragma once

#include <vxr/platform/views/ClipView.h>

namespace vxr {

/// A clip view that fills the whole view, and the document in it. Hosts draw their own scrollers.
class VXR_EXPORT ScrollView : public View {
public:
    explicit ScrollView(const Rect& frame = {});

    ClipView& contentView() const { return *mClipView; }
    View* documentView() const { return mClipView->documentView(); }
    void setDocumentView(std::shared_ptr<View> view) { mClipView->setDocumentView(std::move(view)); }
    Rect documentVisibleRect() const { return mClipView->documentVisibleRect(); }

    void setFrame(const Rect&) override;

private:
    std::shared_ptr<ClipView> mClipView;
};

} // namespace vxr
