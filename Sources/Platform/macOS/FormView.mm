#include "Platform/macOS/FormView.h"

#include "Platform/macOS/Controls.h"
#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Layout.h"

namespace quillon::macos {

namespace {

// In points. They follow the forms of System Settings.
constexpr CGFloat margin = 20;
constexpr CGFloat sectionSpacing = 20;
constexpr CGFloat sectionTitleSpacing = 8;
constexpr CGFloat noteSpacing = 2;
constexpr CGFloat rowPaddingX = 10;
constexpr CGFloat rowPaddingY = 8;
constexpr CGFloat groupCornerRadius = 6;

/// Below what a fitting size is computed with: such a text does not make the window wider, it wraps.
const NSLayoutPriority belowFittingSize = NSLayoutPriorityFittingSizeCompression - 1;

struct MakeItem {
    NSView* operator()(const Label&) const {
        NSTextField* const text = makeTextField();
        [text setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                       forOrientation:NSLayoutConstraintOrientationHorizontal];
        return text;
    }
    NSView* operator()(const Button&) const { return [QuillonButton blankButton]; }
    NSView* operator()(const Badge&) const { return [[QuillonBadge alloc] initWithFrame:NSZeroRect]; }
};

struct ShowItem {
    NSView* view;

    void operator()(const Label& label) const { show(label, static_cast<NSTextField*>(view)); }
    void operator()(const Button& button) const { [static_cast<QuillonButton*>(view) showPortButton:button]; }
    void operator()(const Badge& badge) const { [static_cast<QuillonBadge*>(view) showPortBadge:badge]; }
};

struct MakeControls {
    NSArray<NSView*>* operator()(const RowItems& items) const {
        NSMutableArray<NSView*>* const views = [NSMutableArray array];
        for (const auto& item : items) {
            [views addObject:std::visit(MakeItem(), item)];
        }
        return views;
    }
    NSArray<NSView*>* operator()(const Switch&) const { return @[ [[QuillonSwitch alloc] initWithFrame:NSZeroRect] ]; }
    NSArray<NSView*>* operator()(const Picker&) const {
        return @[ [[QuillonPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] ];
    }
};

struct ShowControls {
    NSArray<NSView*>* views;
    NSString* rowTitle;

    void operator()(const RowItems& items) const {
        NSUInteger index = 0;
        for (const auto& item : items) {
            std::visit(ShowItem{views[index++]}, item);
        }
    }
    void operator()(const Switch& portSwitch) const {
        QuillonSwitch* const view = static_cast<QuillonSwitch*>(views.firstObject);
        view.accessibilityLabel = rowTitle;
        [view showPortSwitch:portSwitch];
    }
    void operator()(const Picker& picker) const {
        QuillonPopUpButton* const view = static_cast<QuillonPopUpButton*>(views.firstObject);
        view.accessibilityLabel = rowTitle;
        [view showPortPicker:picker];
    }
};

/// At its own width: what is left of the line stays free between the two ends.
void addToLine(NSStackView* line, NSView* view, NSStackViewGravity gravity) {
    [view setContentHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationHorizontal];
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [line addView:view inGravity:gravity];
}

} // namespace

} // namespace quillon::macos

using namespace quillon::macos;

@interface QuillonFormRow : NSStackView
- (instancetype)initWithPortRow:(const quillon::FormRow&)row;
- (BOOL)canShowPortRow:(const quillon::FormRow&)row;
/// Only one that it can show.
- (void)showPortRow:(const quillon::FormRow&)row;
@end

@implementation QuillonFormRow {
    quillon::FormRow portRow;
    NSTextField* title; // nil when it has none
    NSTextField* note;  // the same
    NSArray<NSView*>* controls;
}

- (instancetype)initWithPortRow:(const quillon::FormRow&)row {
    self = [super initWithFrame:NSZeroRect];
    makeVertical(self, noteSpacing, NSEdgeInsetsMake(rowPaddingY, rowPaddingX, rowPaddingY, rowPaddingX));
    NSStackView* const line = [[NSStackView alloc] initWithFrame:NSZeroRect];
    if (!row.title.empty()) {
        title = makeTextField();
        // It gives way after the texts at the other end, but before the window grows.
        [title setContentCompressionResistancePriority:NSLayoutPriorityDragThatCannotResizeWindow
                                        forOrientation:NSLayoutConstraintOrientationHorizontal];
        addToLine(line, title, NSStackViewGravityLeading);
    }
    controls = std::visit(MakeControls(), row.control);
    for (NSView* control in controls) {
        addToLine(line, control, NSStackViewGravityTrailing);
    }
    insertFilling(self, line, 0);
    if (!row.note.empty()) {
        note = makeTextField();
        [note setContentCompressionResistancePriority:belowFittingSize
                                       forOrientation:NSLayoutConstraintOrientationHorizontal];
        insertFilling(self, note, 1);
    }
    [self showPortRow:row];
    return self;
}

- (BOOL)canShowPortRow:(const quillon::FormRow&)row {
    return haveSameControls(portRow, row);
}

- (void)showPortRow:(const quillon::FormRow&)row {
    portRow = row;
    if (title != nil) {
        show({row.title, quillon::TextStyle::body}, title);
    }
    if (note != nil) {
        show({row.note, quillon::TextStyle::caption}, note);
    }
    std::visit(ShowControls{controls, toNSString(row.title)}, row.control);
}

@end

/// A rounded field with the rows of a section and a line between each two.
@interface QuillonFormGroup : NSView
@property(nonatomic, readonly) NSStackView* rows;
@end

@implementation QuillonFormGroup

- (instancetype)initWithFrame:(NSRect)frameRect {
    self = [super initWithFrame:frameRect];
    _rows = [[NSStackView alloc] initWithFrame:NSZeroRect];
    makeVertical(_rows, 0, NSEdgeInsetsMake(0, 0, 0, 0));
    fill(self, _rows);
    return self;
}

- (void)layout {
    [super layout];
    self.needsDisplay = YES; // The lines move with the rows.
}

- (void)drawRect:(NSRect)dirtyRect {
    [NSColor.quinarySystemFillColor setFill];
    [NSColor.separatorColor setStroke];
    // Half a point inwards, so that a line of one point lies within the view.
    NSBezierPath* const field = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(self.bounds, 0.5, 0.5)
                                                                xRadius:groupCornerRadius
                                                                yRadius:groupCornerRadius];
    [field fill];
    [field stroke];
    NSBezierPath* const lines = [NSBezierPath bezierPath];
    for (NSView* row in self.rows.arrangedSubviews) {
        const NSRect place = [row convertRect:row.bounds toView:self];
        if (row != self.rows.arrangedSubviews.firstObject) {
            const CGFloat top = NSMaxY(place) - 0.5;
            [lines moveToPoint:NSMakePoint(NSMinX(place) + rowPaddingX, top)];
            [lines lineToPoint:NSMakePoint(NSMaxX(place) - rowPaddingX, top)];
        }
    }
    [lines stroke];
}

@end

@interface QuillonFormSection : NSStackView
- (void)showPortSection:(const quillon::FormSection&)section;
@end

@implementation QuillonFormSection {
    NSTextField* title;
    QuillonFormGroup* group;
}

- (instancetype)initWithFrame:(NSRect)frameRect {
    self = [super initWithFrame:frameRect];
    makeVertical(self, sectionTitleSpacing, NSEdgeInsetsMake(0, 0, 0, 0));
    title = makeTextField();
    title.font = [NSFont boldSystemFontOfSize:NSFont.systemFontSize];
    [title setContentCompressionResistancePriority:belowFittingSize
                                    forOrientation:NSLayoutConstraintOrientationHorizontal];
    group = [[QuillonFormGroup alloc] initWithFrame:NSZeroRect];
    insertFilling(self, title, 0);
    insertFilling(self, group, 1);
    return self;
}

- (void)showPortSection:(const quillon::FormSection&)section {
    title.stringValue = toNSString(section.title);
    NSUInteger index = 0;
    for (const auto& row : section.rows) {
        [self showPortRow:row atIndex:index++];
    }
    removeFrom(group.rows, index);
}

- (void)showPortRow:(const quillon::FormRow&)row atIndex:(NSUInteger)index {
    QuillonFormRow* const shown = viewAt(group.rows, index);
    if (shown != nil && [shown canShowPortRow:row]) {
        [shown showPortRow:row];
        return;
    }
    if (shown != nil) {
        takeOut(shown);
    }
    insertFilling(group.rows, [[QuillonFormRow alloc] initWithPortRow:row], index);
}

@end

/// What the form scrolls.
@interface QuillonFormDocument : NSStackView
@end

@implementation QuillonFormDocument

- (BOOL)isFlipped {
    return YES; // A document shorter than its scroll view then stands at the top.
}

@end

@implementation QuillonFormView {
    QuillonFormDocument* document;
    QuillonButton* closing;
}

- (instancetype)initWithPortForm:(const quillon::Form&)form {
    self = [super initWithFrame:NSZeroRect];
    document = [[QuillonFormDocument alloc] initWithFrame:NSZeroRect];
    makeVertical(document, sectionSpacing, NSEdgeInsetsMake(margin, margin, margin, margin));
    closing = [QuillonButton blankButton];
    NSScrollView* const scrollView = [self makeScrollView];
    [self layOut:scrollView minimumSize:form.minimumSize];
    [self showPortForm:form];
    return self;
}

- (NSScrollView*)makeScrollView {
    NSScrollView* const scrollView = [[NSScrollView alloc] initWithFrame:NSZeroRect];
    scrollView.drawsBackground = NO;
    scrollView.hasVerticalScroller = YES;
    scrollView.autohidesScrollers = YES;
    scrollView.automaticallyAdjustsContentInsets = NO;
    scrollView.documentView = document;
    return scrollView;
}

- (void)layOut:(NSScrollView*)scrollView minimumSize:(const quillon::Size&)minimumSize {
    for (NSView* view in @[ scrollView, document, closing ]) {
        view.translatesAutoresizingMaskIntoConstraints = NO;
    }
    [self addSubview:scrollView];
    [self addSubview:closing];
    NSClipView* const clipView = scrollView.contentView;
    // The form would show all of the document, but takes whatever size its window has.
    NSLayoutConstraint* const wantedHeight =
        [scrollView.heightAnchor constraintGreaterThanOrEqualToAnchor:document.heightAnchor];
    wantedHeight.priority = NSLayoutPriorityDefaultLow;
    [NSLayoutConstraint activateConstraints:@[
        [self.widthAnchor constraintGreaterThanOrEqualToConstant:minimumSize.width],
        [self.heightAnchor constraintGreaterThanOrEqualToConstant:minimumSize.height],
        [scrollView.topAnchor constraintEqualToAnchor:self.topAnchor],
        [scrollView.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
        [scrollView.trailingAnchor constraintEqualToAnchor:self.trailingAnchor],
        wantedHeight,
        [document.topAnchor constraintEqualToAnchor:clipView.topAnchor],
        [document.leadingAnchor constraintEqualToAnchor:clipView.leadingAnchor],
        [document.trailingAnchor constraintEqualToAnchor:clipView.trailingAnchor],
        [closing.topAnchor constraintEqualToAnchor:scrollView.bottomAnchor constant:margin / 2],
        [closing.leadingAnchor constraintGreaterThanOrEqualToAnchor:self.leadingAnchor constant:margin],
        [closing.trailingAnchor constraintEqualToAnchor:self.trailingAnchor constant:-margin],
        [closing.bottomAnchor constraintEqualToAnchor:self.bottomAnchor constant:-margin],
    ]];
}

- (void)showPortForm:(const quillon::Form&)form {
    NSUInteger index = 0;
    for (const auto& section : form.sections) {
        QuillonFormSection* shown = viewAt(document, index);
        if (shown == nil) {
            shown = [[QuillonFormSection alloc] initWithFrame:NSZeroRect];
            insertFilling(document, shown, index);
        }
        [shown showPortSection:section];
        ++index;
    }
    removeFrom(document, index);
    [closing showPortButton:form.closing];
}

@end
