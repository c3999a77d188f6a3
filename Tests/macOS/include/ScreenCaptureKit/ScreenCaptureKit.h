// Shareable windows, filters, streams and screenshots.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <CoreMedia/CoreMedia.h>
#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(12.3))
@interface SCWindow : NSObject
- (instancetype)init NS_UNAVAILABLE;
@property(readonly) CGWindowID windowID;
@property(readonly, nullable) NSString* title;
@end

API_AVAILABLE(macos(12.3))
@interface SCShareableContent : NSObject
- (instancetype)init NS_UNAVAILABLE;
+ (void)getShareableContentExcludingDesktopWindows:(BOOL)excludeDesktopWindows
                               onScreenWindowsOnly:(BOOL)onScreenWindowsOnly
                                 completionHandler:(void (^)(SCShareableContent* _Nullable shareableContent,
                                                             NSError* _Nullable error))completionHandler;
@property(readonly) NSArray<SCWindow*>* windows;
@end

API_AVAILABLE(macos(12.3))
@interface SCContentFilter : NSObject
- (instancetype)initWithDesktopIndependentWindow:(SCWindow*)window;
@property(nonatomic, readonly) float pointPixelScale API_AVAILABLE(macos(14.0));
@end

typedef NS_ENUM(NSInteger, SCCaptureResolutionType) {
    SCCaptureResolutionAutomatic,
    SCCaptureResolutionBest,
    SCCaptureResolutionNominal,
};

API_AVAILABLE(macos(12.3))
@interface SCStreamConfiguration : NSObject
@property(nonatomic, assign) size_t width;
@property(nonatomic, assign) size_t height;
@property(nonatomic, assign) CMTime minimumFrameInterval;
@property(nonatomic, assign) OSType pixelFormat;
@property(nonatomic, assign) BOOL scalesToFit;
@property(nonatomic, assign) BOOL showsCursor;
@property(nonatomic, assign) BOOL showMouseClicks API_AVAILABLE(macos(15.0));
@property(nonatomic, assign) NSInteger queueDepth;
@property(nonatomic, assign) SCCaptureResolutionType captureResolution API_AVAILABLE(macos(14.0));
@end

typedef NS_ENUM(NSInteger, SCStreamOutputType) {
    SCStreamOutputTypeScreen,
    SCStreamOutputTypeAudio API_AVAILABLE(macos(13.0)),
};

typedef NSString* SCStreamFrameInfo API_AVAILABLE(macos(12.3));
extern "C" SCStreamFrameInfo const SCStreamFrameInfoStatus API_AVAILABLE(macos(12.3));

@class SCStream;

API_AVAILABLE(macos(12.3))
@protocol SCStreamOutput <NSObject>
@optional
- (void)stream:(SCStream*)stream didOutputSampleBuffer:(CMSampleBufferRef)sampleBuffer ofType:(SCStreamOutputType)type;
@end

API_AVAILABLE(macos(12.3))
@protocol SCStreamDelegate <NSObject>
@optional
- (void)stream:(SCStream*)stream didStopWithError:(NSError*)error;
@end

API_AVAILABLE(macos(12.3))
@interface SCStream : NSObject
- (instancetype)init NS_UNAVAILABLE;
- (instancetype)initWithFilter:(SCContentFilter*)contentFilter
                 configuration:(SCStreamConfiguration*)streamConfig
                      delegate:(nullable id<SCStreamDelegate>)delegate;
- (BOOL)addStreamOutput:(id<SCStreamOutput>)output
                   type:(SCStreamOutputType)type
     sampleHandlerQueue:(nullable dispatch_queue_t)sampleHandlerQueue
                  error:(NSError**)error;
- (void)updateConfiguration:(SCStreamConfiguration*)streamConfig
          completionHandler:(nullable void (^)(NSError* _Nullable error))completionHandler;
- (void)startCaptureWithCompletionHandler:(nullable void (^)(NSError* _Nullable error))completionHandler;
- (void)stopCaptureWithCompletionHandler:(nullable void (^)(NSError* _Nullable error))completionHandler;
@end

API_AVAILABLE(macos(14.0))
@interface SCScreenshotManager : NSObject
+ (void)captureImageWithFilter:(SCContentFilter*)contentFilter
                 configuration:(SCStreamConfiguration*)config
             completionHandler:
                 (nullable void (^)(CGImageRef _Nullable sampleBuffer, NSError* _Nullable error))completionHandler;
@end

NS_ASSUME_NONNULL_END
