// Layers and transactions.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* CALayerContentsGravity;
extern "C" CALayerContentsGravity const kCAGravityResize;

@interface CALayer : NSObject
+ (instancetype)layer;
@property CGRect frame;
@property(nullable, strong) id contents;
@property(copy) CALayerContentsGravity contentsGravity;
- (void)insertSublayer:(CALayer*)layer atIndex:(unsigned)index;
- (void)removeFromSuperlayer;
@end

@interface CATransaction : NSObject
+ (void)begin;
+ (void)commit;
+ (void)flush;
+ (void)setDisableActions:(BOOL)flag;
@end

NS_ASSUME_NONNULL_END
