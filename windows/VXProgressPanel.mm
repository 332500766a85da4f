#import <Talvo/VXProgressPanel.h>

#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXProgressPanel

@synthesize indicator;
@synthesize messageField;

#pragma mark - Lifecycle

- (instancetype)init {
  self = [super init];
  if (self == nil) {
    return nil;
  }
  indicator = [[NSProgressIndicator alloc] initWithFrame:NSMakeRect(20, 12, 300, 20)];
  [[self contentView] addSubview:indicator];

  messageField = [[NSTextField alloc] initWithFrame:NSMakeRect(20, 40, 300, 20)];
  [messageField setBackgroundColor:[NSColor clearColor]];
  [messageField setDrawsBackground:NO];
  [messageField setBezeled:NO];
  [messageField setEditable:NO];
  [messageField setFont:[NSFont boldSystemFontOfSize:14.0]];
  [[self contentView] addSubview:messageField];

  [self setFrame:NSMakeRect(0, 0, 340, 100) display:NO];
  return self;
}

- (void)dealloc {
  TalvoDestroy(messageField);
  TalvoDestroy(indicator);
  [super dealloc];
}

#pragma mark - Public

- (void)beginSheetModalForWindow:(NSWindow *)window {
  if (![window isKindOfClass:[NSWindow class]]) {
    return;
  }
  [indicator startAnimation:self];
  [messageField setStringValue:[self title] ?: @""];
  @try {
    [NSApp beginSheet:self
        modalForWindow:window
         modalDelegate:self
        didEndSelector:NULL
           contextInfo:NULL];
  } @catch (NSException *exception) {
  }
}

@end
