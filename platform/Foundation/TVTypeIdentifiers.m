#import "platform/Foundation/TVTypeIdentifiers.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Extension (lower case) to identifier.
static NSDictionary *ExtensionTypes(void) {
  static NSDictionary *types = nil;
  if (types == nil) {
    types = [[NSDictionary alloc]
        initWithObjectsAndKeys:@"public.png", @"png", @"public.jpeg", @"jpg", @"public.jpeg",
                               @"jpeg", @"public.jpeg", @"jpe", @"com.compuserve.gif", @"gif",
                               @"com.microsoft.bmp", @"bmp", @"public.tiff", @"tif", @"public.tiff",
                               @"tiff", @"org.webmproject.webp", @"webp", @"public.heic", @"heic",
                               @"com.microsoft.ico", @"ico", @"com.apple.icns", @"icns",
                               @"com.adobe.pdf", @"pdf", @"public.plain-text", @"txt",
                               @"public.json", @"json", @"public.xml", @"xml", @"public.html",
                               @"html", @"public.html", @"htm", nil];
  }
  return types;
}

// Identifier to its direct parents.
static NSDictionary *Parents(void) {
  static NSDictionary *parents = nil;
  if (parents == nil) {
    NSArray *image = @[ @"public.image" ];
    NSArray *text = @[ @"public.text" ];
    parents = [[NSDictionary alloc]
        initWithObjectsAndKeys:image, @"public.png", image, @"public.jpeg", image,
                               @"com.compuserve.gif", image, @"com.microsoft.bmp", image,
                               @"public.tiff", image, @"org.webmproject.webp",
                               @[ @"public.heif-standard" ], @"public.heic", image,
                               @"public.heif-standard", image, @"com.microsoft.ico", image,
                               @"com.apple.icns", @[ @"public.data", @"public.content" ],
                               @"public.image", @[ @"public.data", @"public.composite-content" ],
                               @"com.adobe.pdf", @[ @"public.content" ],
                               @"public.composite-content", text, @"public.plain-text", text,
                               @"public.json", text, @"public.xml", text, @"public.html",
                               @[ @"public.data", @"public.content" ], @"public.text",
                               @[ @"public.item" ], @"public.data", @[ @"public.item" ],
                               @"public.content", @[ @"public.directory" ], @"public.folder",
                               @[ @"public.item" ], @"public.directory", nil];
  }
  return parents;
}

NSString *TVTypeIdentifierForPath(NSString *path, BOOL isDirectory) {
  if (![path isKindOfClass:[NSString class]] || [path length] == 0) return nil;
  if (isDirectory) return @"public.folder";
  NSString *type = [ExtensionTypes() objectForKey:[[path pathExtension] lowercaseString]];
  return type != nil ? type : @"public.data";
}

BOOL TVTypeConformsTo(NSString *type, NSString *parent) {
  if (![type isKindOfClass:[NSString class]] || ![parent isKindOfClass:[NSString class]]) return NO;
  // The tree is shallow; a bound keeps a cycle from looping.
  NSMutableArray *pending = [NSMutableArray arrayWithObject:type];
  for (int steps = 0;[pending count] > 0 && steps < 64; steps++) {
    NSString *next = [pending lastObject];
    if ([next isEqualToString:parent]) return YES;
    [pending removeLastObject];
    NSArray *up = [Parents() objectForKey:next];
    if (up != nil) [pending addObjectsFromArray:up];
  }
  return NO;
}

NSArray *TVImageTypeIdentifiers(void) {
  return @[
    @"public.png", @"public.jpeg", @"com.compuserve.gif", @"public.tiff", @"com.microsoft.bmp",
    @"org.webmproject.webp"
  ];
}
