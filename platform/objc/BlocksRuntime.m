/*
 * Blocks as Objective-C objects on the GCC runtime.
 *
 * Neither copy of the blocks runtime available on Debian works with manual
 * reference counting: gnustep-base's _Block_copy hands a stack block back
 * uncopied, and libBlocksRuntime leaves heap copies with the stack isa and
 * never retains the objects a block captures. Talvo therefore defines the
 * runtime entry points itself, after the block ABI that clang documents,
 * and makes the three isa symbols
 * real classes, so that blocks answer copy, retain, release and autorelease
 * and can live in properties and collections.
 *
 * Not covered: __weak captures (there is no __weak under manual reference
 * counting) and the garbage-collected variants of the ABI.
 */
#define _GNU_SOURCE
#import <Foundation/Foundation.h>
#include <Block.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

/* Block layout, flags and field kinds, as the compiler emits them. */
enum {
  TVBlockRefCountMask = 0xffff,
  TVBlockNeedsFree = 1 << 24,
  TVBlockHasCopyDispose = 1 << 25,
  TVBlockIsGlobal = 1 << 28,
};

enum {
  TVFieldIsObject = 3,
  TVFieldIsBlock = 7,
  TVFieldIsByref = 8,
  TVFieldIsWeak = 16,
  TVFieldByrefCaller = 128,
};

struct TVBlockDescriptor {
  unsigned long reserved;
  unsigned long size;
  void (*copyHelper)(void *dst, const void *src);
  void (*disposeHelper)(const void *block);
};

struct TVBlockLayout {
  void *isa;
  volatile int flags;
  int reserved;
  void *invoke;
  struct TVBlockDescriptor *descriptor;
};

struct TVByref {
  void *isa;
  struct TVByref *forwarding;
  volatile int flags;
  unsigned int size;
  void (*keepHelper)(struct TVByref *dst, struct TVByref *src);
  void (*destroyHelper)(struct TVByref *byref);
};

/* Offset of a __block variable's payload when it has no helpers. */
static const size_t TVByrefHeaderSize = offsetof(struct TVByref, keepHelper);

extern void *_NSConcreteMallocBlock[];

/* The reference count lives in the low 16 bits of the flags; a saturated
 * count (all ones) pins the block for ever, as Apple's runtime does. */
static void TVRetainFlags(volatile int *flags) {
  int old = __atomic_load_n(flags, __ATOMIC_RELAXED);
  while ((old & TVBlockRefCountMask) != TVBlockRefCountMask &&
         !__atomic_compare_exchange_n(flags, &old, old + 1, 0, __ATOMIC_ACQ_REL,
                                      __ATOMIC_RELAXED)) {
  }
}

/* Returns YES when the count dropped to zero. */
static BOOL TVReleaseFlags(volatile int *flags) {
  int old = __atomic_load_n(flags, __ATOMIC_RELAXED);
  for (;;) {
    int count = old & TVBlockRefCountMask;
    if (count == TVBlockRefCountMask || count == 0) {
      return NO;
    }
    if (__atomic_compare_exchange_n(flags, &old, old - 1, 0, __ATOMIC_ACQ_REL,
                                    __ATOMIC_RELAXED)) {
      return count == 1;
    }
  }
}

#pragma mark - Block entry points

void *_Block_copy(const void *arg) {
  struct TVBlockLayout *block = (struct TVBlockLayout *)arg;
  if (block == NULL) {
    return NULL;
  }
  if (block->flags & TVBlockNeedsFree) {
    TVRetainFlags(&block->flags);
    return block;
  }
  if (block->flags & TVBlockIsGlobal) {
    return block;
  }
  struct TVBlockLayout *copy = malloc(block->descriptor->size);
  if (copy == NULL) {
    return NULL;
  }
  memcpy(copy, block, block->descriptor->size);
  copy->flags = (copy->flags & ~TVBlockRefCountMask) | TVBlockNeedsFree | 1;
  copy->isa = _NSConcreteMallocBlock;
  if (block->flags & TVBlockHasCopyDispose) {
    block->descriptor->copyHelper(copy, block);
  }
  return copy;
}

void _Block_release(const void *arg) {
  struct TVBlockLayout *block = (struct TVBlockLayout *)arg;
  if (block == NULL || !(block->flags & TVBlockNeedsFree)) {
    return;
  }
  if (!TVReleaseFlags(&block->flags)) {
    return;
  }
  if (block->flags & TVBlockHasCopyDispose) {
    block->descriptor->disposeHelper(block);
  }
  free(block);
}

/* Moves a __block variable to the heap the first time a block that uses it
 * is copied; later copies share the heap variable. */
static struct TVByref *TVByrefCopy(struct TVByref *source) {
  struct TVByref *current = source->forwarding;
  if ((current->flags & TVBlockRefCountMask) == 0) {
    struct TVByref *heap = malloc(source->size);
    if (heap == NULL) {
      return source;
    }
    heap->isa = NULL;
    /* One reference for the heap copy and one for the stack frame's block. */
    heap->flags = source->flags | TVBlockNeedsFree | 2;
    heap->forwarding = heap;
    source->forwarding = heap;
    heap->size = source->size;
    if (source->flags & TVBlockHasCopyDispose) {
      heap->keepHelper = source->keepHelper;
      heap->destroyHelper = source->destroyHelper;
      source->keepHelper(heap, source);
    } else {
      memmove((char *)heap + TVByrefHeaderSize, (char *)source + TVByrefHeaderSize,
              source->size - TVByrefHeaderSize);
    }
    return heap;
  }
  if (current->flags & TVBlockNeedsFree) {
    TVRetainFlags(&current->flags);
  }
  return current;
}

static void TVByrefRelease(struct TVByref *byref) {
  byref = byref->forwarding;
  if (!(byref->flags & TVBlockNeedsFree)) {
    return;
  }
  if (!TVReleaseFlags(&byref->flags)) {
    return;
  }
  if (byref->flags & TVBlockHasCopyDispose) {
    byref->destroyHelper(byref);
  }
  free(byref);
}

static int TVFieldKind(int flags) {
  return flags & (TVFieldIsObject | TVFieldIsBlock | TVFieldIsByref | TVFieldIsWeak |
                  TVFieldByrefCaller);
}

void _Block_object_assign(void *destination, const void *object, const int flags) {
  switch (TVFieldKind(flags)) {
    case TVFieldIsObject:
      *(id *)destination = [(id)object retain];
      break;
    case TVFieldIsBlock:
      *(void **)destination = _Block_copy(object);
      break;
    case TVFieldIsByref:
    case TVFieldIsByref | TVFieldIsWeak:
      *(void **)destination = TVByrefCopy((struct TVByref *)object);
      break;
    default:
      /* Object held in a __block variable: not retained under manual
       * reference counting, as on Apple's platforms. */
      *(const void **)destination = object;
      break;
  }
}

void _Block_object_dispose(const void *object, const int flags) {
  switch (TVFieldKind(flags)) {
    case TVFieldIsObject:
      [(id)object release];
      break;
    case TVFieldIsBlock:
      _Block_release(object);
      break;
    case TVFieldIsByref:
    case TVFieldIsByref | TVFieldIsWeak:
      TVByrefRelease((struct TVByref *)object);
      break;
    default:
      break;
  }
}

#pragma mark - Block classes

/* Stack and global blocks are never freed by reference counting: retain and
 * release do nothing, copy moves a stack block to the heap. */
@interface _TVBlock : NSObject
@end

@implementation _TVBlock

- (id)copy {
  return _Block_copy(self);
}

- (id)copyWithZone:(NSZone *)zone {
  return _Block_copy(self);
}

- (id)retain {
  return self;
}

- (oneway void)release {
}

- (id)autorelease {
  return self;
}

- (NSUInteger)retainCount {
  return NSUIntegerMax;
}

- (void)dealloc {
  /* Blocks are freed by _Block_release, never by NSObject. */
  if (0) {
    [super dealloc];
  }
}

@end

@interface _TVStackBlock : _TVBlock
@end
@implementation _TVStackBlock
@end

@interface _TVGlobalBlock : _TVBlock
@end
@implementation _TVGlobalBlock
@end

@interface _TVMallocBlock : _TVBlock
@end

@implementation _TVMallocBlock

- (id)retain {
  return _Block_copy(self);
}

- (oneway void)release {
  _Block_release(self);
}

- (id)autorelease {
  [NSAutoreleasePool addObject:self];
  return self;
}

- (NSUInteger)retainCount {
  return (NSUInteger)(((struct TVBlockLayout *)self)->flags & TVBlockRefCountMask);
}

@end

/* The compiler refers to these three symbols as the isa of every block it
 * emits; aliasing them to the class structures makes blocks objects. */
#define TV_BLOCK_ISA_ALIAS(symbol, cls)                                  \
  __asm__(".globl " #symbol "\n\t.type " #symbol ",@object\n\t.set " #symbol \
          ", _OBJC_CLASS_" #cls "\n\t.size " #symbol ", 144\n")
TV_BLOCK_ISA_ALIAS(_NSConcreteStackBlock, _TVStackBlock);
TV_BLOCK_ISA_ALIAS(_NSConcreteMallocBlock, _TVMallocBlock);
TV_BLOCK_ISA_ALIAS(_NSConcreteGlobalBlock, _TVGlobalBlock);

#pragma mark - Load-order guard

/* gnustep-base exports _Block_copy and _NSConcreteStackBlock as well; the
 * library that comes first in the process's lookup order wins. If it is not
 * Talvo, blocks would silently lose their captured objects: stop at once. */
static BOOL TVSymbolDefinedInThisLibrary(const char *name) {
  Dl_info found = {0};
  Dl_info here = {0};
  void *address = dlsym(RTLD_DEFAULT, name);
  return address != NULL && dladdr(address, &found) &&
         dladdr((void *)TVSymbolDefinedInThisLibrary, &here) &&
         found.dli_fbase == here.dli_fbase;
}

__attribute__((constructor)) static void TVCheckBlocksRuntime(void) {
  if (!TVSymbolDefinedInThisLibrary("_Block_copy") ||
      !TVSymbolDefinedInThisLibrary("_NSConcreteStackBlock")) {
    Dl_info winner = {0};
    dladdr(dlsym(RTLD_DEFAULT, "_Block_copy"), &winner);
    fprintf(stderr,
            "Talvo: the blocks runtime is shadowed by %s; link Talvo before "
            "gnustep-base\n",
            winner.dli_fname ? winner.dli_fname : "another library");
    abort();
  }
}
