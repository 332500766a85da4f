// Uniform type identifiers for file URLs on GNUstep, which has none: the
// type follows the file name's extension (as on macOS), "public.folder"
// for a directory, and "public.data" for a regular file of an unknown
// extension (macOS answers a dynamic "dyn." identifier there).
// Conformance follows a small fixed tree: the image formats conform to
// "public.image", images and text to "public.data" and "public.content",
// folders to "public.directory", everything to "public.item".
#ifndef TALVO_TVTYPEIDENTIFIERS_H
#define TALVO_TVTYPEIDENTIFIERS_H

#import <Foundation/Foundation.h>

#define TV_HIDDEN __attribute__((visibility("hidden")))

#ifdef __cplusplus
extern "C" {
#endif

// The identifier of a file named `path`; nil for an empty path.
TV_HIDDEN NSString *TVTypeIdentifierForPath(NSString *path, BOOL isDirectory);
// Whether `type` is `parent` or conforms to it through the tree.
TV_HIDDEN BOOL TVTypeConformsTo(NSString *type, NSString *parent);
// The identifiers of the image formats this platform reads, in a fixed order.
TV_HIDDEN NSArray *TVImageTypeIdentifiers(void);

#ifdef __cplusplus
}
#endif

#endif
