#pragma once

#include "Platform/Panel.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

inline NSWindowCollectionBehavior nativeCollectionBehavior(const CollectionBehavior& behavior) {
    NSWindowCollectionBehavior result = NSWindowCollectionBehaviorDefault;
    if (behavior.canJoinAllSpaces) {
        result |= NSWindowCollectionBehaviorCanJoinAllSpaces;
    }
    if (behavior.fullScreenAuxiliary) {
        result |= NSWindowCollectionBehaviorFullScreenAuxiliary;
    }
    if (behavior.moveToActiveSpace) {
        result |= NSWindowCollectionBehaviorMoveToActiveSpace;
    }
    return result;
}

} // namespace quillon::macos
