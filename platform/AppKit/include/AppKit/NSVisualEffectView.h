/*
 * NSVisualEffectView for Talvo on GNUstep: GNUstep's class, which stores
 * its settings and draws nothing, made to draw.
 *
 * The view draws its material as a flat, opaque fill chosen by the
 * material and the view's effective appearance (dark for DarkAqua and
 * VibrantDark, light otherwise; Dark, UltraDark, HUD and Light materials
 * keep their own tone). An inactive view (state Inactive, or
 * FollowsWindowActiveState in a window that is neither key nor main) draws
 * the appearance's plain window background. emphasized is stored and
 * changes the Selection material's fill. blendingMode is stored.
 *
 * Not covered: blur, vibrancy and anything seen through the view (there is
 * no compositing here), maskImage (stored by GNUstep, not applied),
 * interiorBackgroundStyle (always 0).
 */
#ifndef TALVO_PLATFORM_NSVISUALEFFECTVIEW_H
#define TALVO_PLATFORM_NSVISUALEFFECTVIEW_H

#include_next <AppKit/NSVisualEffectView.h>

NS_ASSUME_NONNULL_BEGIN

// Materials GNUstep's header leaves out, with Apple's values.
enum {
  NSVisualEffectMaterialSelection = 4,
  NSVisualEffectMaterialHeaderView = 10,
  NSVisualEffectMaterialSheet = 11,
  NSVisualEffectMaterialWindowBackground = 12,
  NSVisualEffectMaterialHUDWindow = 13,
  NSVisualEffectMaterialFullScreenUI = 15,
  NSVisualEffectMaterialToolTip = 17,
  NSVisualEffectMaterialContentBackground = 18,
  NSVisualEffectMaterialUnderWindowBackground = 21,
  NSVisualEffectMaterialUnderPageBackground = 22,
};

@interface NSVisualEffectView (TalvoPlatform)
/** NO at first. */
- (BOOL)isEmphasized;
- (void)setEmphasized:(BOOL)emphasized;
@end

NS_ASSUME_NONNULL_END

#endif
