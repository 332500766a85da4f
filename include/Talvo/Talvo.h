// Talvo: a user-interface toolkit for AppKit applications.
// The umbrella header: the version symbols and every public header.
#import <AppKit/AppKit.h>

#import <Talvo/TalvoExport.h>

/** "@(#)PROGRAM:Talvo  PROJECT:TalvoFramework-1" followed by a line feed. */
TALVO_EXTERN const unsigned char TalvoVersionString[];
/** 1.0 */
TALVO_EXTERN const double TalvoVersionNumber;

// Layout containers
#import <Talvo/VXSplitViewDelegate.h>
#import <Talvo/VXSplitViewDivider.h>
#import <Talvo/VXSplitView.h>
#import <Talvo/VXSplitViewPositioner.h>
#import <Talvo/VXSplitViewPositionerAtBeginning.h>
#import <Talvo/VXSplitViewPositionerAtEnd.h>
#import <Talvo/VXStackView.h>
#import <Talvo/NSLayoutConstraint+Container.h>
#import <Talvo/VXLiveResizeView.h>

// Windows and window effects
#import <Talvo/VXCustomWindow.h>
#import <Talvo/VXBarlessCustomWindow.h>
#import <Talvo/VXVisualEffectWindow.h>
#import <Talvo/VXBottomPopupWindow.h>
#import <Talvo/VXWindowIntrospection.h>
#import <Talvo/NSWindow+Image.h>
#import <Talvo/NSView+Image.h>
#import <Talvo/NSWindow+ZoomEffect.h>
#import <Talvo/NSWindow+Animation.h>
#import <Talvo/CAKeyframeAnimation+Shake.h>
#import <Talvo/CALayer+CenterPoint.h>
#import <Talvo/VXProgressPanel.h>
#import <Talvo/NSAlert+Block.h>
#import <Talvo/NSBundle+ObjectLoader.h>

// Images and colours
#import <Talvo/VXImageTrimming.h>
#import <Talvo/VXOffscreenDrawing.h>
#import <Talvo/NSBitmapImageRep+Trim.h>
#import <Talvo/NSImage+Trim.h>
#import <Talvo/NSImage+Cap.h>
#import <Talvo/NSImage+FitSize.h>
#import <Talvo/NSImage+DrawColor.h>
#import <Talvo/NSImage+RepresentationsSearching.h>
#import <Talvo/NSBitmapImageRep+Addons.h>
#import <Talvo/NSColor+Checkboard.h>
#import <Talvo/NSColor+Talvo.h>
#import <Talvo/NSColor+Transform.h>
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/ReflectedGradient.h>
#import <Talvo/NSImage+URLDefinition.h>
#import <Talvo/NSImage+Directory.h>
#import <Talvo/NSImage+URLs.h>
#import <Talvo/NSImage+Pasteboard.h>
#import <Talvo/NSImage+FileSize.h>

// Controls and cells
#import <Talvo/VXGradientCellDrawer.h>
#import <Talvo/VXGradientButtonCell.h>
#import <Talvo/VXGradientPopUpButtonCell.h>
#import <Talvo/VXTabBarButtonCell.h>
#import <Talvo/VXPopoverShape.h>
#import <Talvo/VXPopoverViewsSegmentedControl.h>
#import <Talvo/VXFlatSliderCell.h>
#import <Talvo/VXButtonCell.h>
#import <Talvo/VXButton.h>
#import <Talvo/VXAnimatedButton.h>
#import <Talvo/VXMatteColorWell.h>
#import <Talvo/VXVerticallyCenteredTextFieldCell.h>
#import <Talvo/VXAnimatedSelectionTableRowView.h>
#import <Talvo/VXMaskImageView.h>
#import <Talvo/VXTransparentScroller.h>

// Bindings, transformers and collection utilities
#import <Talvo/VXObservationCenter.h>
#import <Talvo/NSObject+TwoWayBinding.h>
#import <Talvo/VXLocalizer.h>
#import <Talvo/VXCollectionIsEmpty.h>
#import <Talvo/VXCollectionNotEmpty.h>
#import <Talvo/VXCollectionContainsMutipleElements.h>
#import <Talvo/VXValidIndexValueTransformer.h>
#import <Talvo/VXOrderedSetArrayValueTransformer.h>
#import <Talvo/VXIndexSetIndexValueTransformer.h>
#import <Talvo/VXObjectToArrayValueTransformer.h>
#import <Talvo/VXSetArrayValueTransformer.h>
#import <Talvo/VXStringToAttributedString.h>
#import <Talvo/NSArray+Indexes.h>
#import <Talvo/NSOrderedSet+Indexes.h>
#import <Talvo/NSSet+Indexes.h>
#import <Talvo/NSAttributedString+Trim.h>
#import <Talvo/NSDictionary+HttpString.h>
#import <Talvo/NSCalendar+Day.h>
#import <Talvo/NSUndoManager+UndoWithoutRedo.h>
#import <Talvo/NSEvent+Shortcuts.h>
