#import "gallery/pages/BindingsPage.h"

// The model: one observable level from 0 to 100.
@interface GalleryLevel : NSObject {
  double _level;
}
@property(nonatomic, assign) double level;
@end

@implementation GalleryLevel
@synthesize level = _level;
@end

// Keeps the model, the controls and the observation together for the
// page's lifetime.
@interface BindingsPageView : NSView {
  GalleryLevel *_model;
  NSSlider *_slider;
  NSTextField *_field;
}
- (instancetype)initWithFrame:(NSRect)frame;
@end

@implementation BindingsPageView

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) {
    return nil;
  }
  _model = [GalleryLevel new];
  double top = NSHeight(frame);
  [self addSubview:GalleryLabel(@"Level (slider and field both edit the model)",
                                NSMakeRect(20, top - 40, 400, 20))];
  _slider = [[NSSlider alloc] initWithFrame:NSMakeRect(20, top - 74, 300, 24)];
  [_slider setMinValue:0];
  [_slider setMaxValue:100];
  [_slider setTarget:self];
  [_slider setAction:@selector(sliderMoved:)];
  [self addSubview:_slider];
  _field = [[NSTextField alloc] initWithFrame:NSMakeRect(340, top - 74, 80, 24)];
  [_field setTarget:self];
  [_field setAction:@selector(fieldEdited:)];
  [self addSubview:_field];

  // Model to controls: one block through the shared observation center.
  NSSlider *slider = _slider;
  NSTextField *field = _field;
  [[VXObservationCenter sharedObservationCenter]
      observeKeyPath:@"level"
            ofObject:_model
             options:NSKeyValueObservingOptionNew | NSKeyValueObservingOptionInitial
       changeHandler:^(NSDictionary *change) {
         double level = [[change objectForKey:NSKeyValueChangeNewKey] doubleValue];
         [slider setDoubleValue:level];
         [field setStringValue:[NSString stringWithFormat:@"%.0f", level]];
       }];
  [_model setLevel:64];

  [self addSamplesBelow:top - 120];
  return self;
}

- (void)dealloc {
  [[VXObservationCenter sharedObservationCenter] unObserveKeyPath:nil ofObject:_model];
  [_field release];
  [_slider release];
  [_model release];
  [super dealloc];
}

- (void)sliderMoved:(id)sender {
  [_model setLevel:round([_slider doubleValue])];
}

- (void)fieldEdited:(id)sender {
  [_model setLevel:MAX(0, MIN(100, [_field doubleValue]))];
}

- (void)addSamplesBelow:(double)y {
  NSArray *empty = [NSArray array];
  NSArray *two = [NSArray arrayWithObjects:@"a", @"b", nil];
  NSIndexSet *selection = [NSIndexSet indexSetWithIndex:3];
  NSArray *lines = [NSArray arrayWithObjects:
      [NSString stringWithFormat:@"VXCollectionIsEmpty: () -> %@, (a, b) -> %@",
                                 [[[VXCollectionIsEmpty new] autorelease] transformedValue:empty],
                                 [[[VXCollectionIsEmpty new] autorelease] transformedValue:two]],
      [NSString stringWithFormat:@"VXCollectionContainsMutipleElements: (a, b) -> %@",
                                 [[[VXCollectionContainsMutipleElements new] autorelease]
                                     transformedValue:two]],
      [NSString stringWithFormat:@"VXValidIndexValueTransformer: -1 -> %@, 5 -> %@",
                                 [[[VXValidIndexValueTransformer new] autorelease]
                                     transformedValue:[NSNumber numberWithInt:-1]],
                                 [[[VXValidIndexValueTransformer new] autorelease]
                                     transformedValue:[NSNumber numberWithInt:5]]],
      [NSString stringWithFormat:@"VXIndexSetIndexValueTransformer: {3} -> %@ (reverse)",
                                 [[[VXIndexSetIndexValueTransformer new] autorelease]
                                     reverseTransformedValue:selection]],
      [NSString stringWithFormat:@"VXStringToAttributedString: \"abc\" -> %@",
                                 [[[[VXStringToAttributedString new] autorelease]
                                     transformedValue:@"abc"] class]],
      [NSString stringWithFormat:@"VXLocalizer: \"Open Recent\" -> \"%@\"",
                                 [[[VXLocalizer new] autorelease] valueForKey:@"Open Recent"]],
      [NSString stringWithFormat:@"httpString: %@",
                                 [[NSDictionary dictionaryWithObject:@"1" forKey:@"page"] httpString]],
      nil];
  for (NSString *line in lines) {
    [self addSubview:GalleryLabel(line, NSMakeRect(20, y, 600, 20))];
    y -= 24;
  }
}

@end

@implementation BindingsPage

- (NSString *)identifier {
  return @"bindings";
}

- (NSString *)title {
  return @"Bindings";
}

- (NSString *)caption {
  return @"A model bound two-way to a slider and a text field through the observation center, "
         @"the value transformers applied to sample values, and a localizer lookup.";
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  return [[[BindingsPageView alloc] initWithFrame:frame] autorelease];
}

@end
