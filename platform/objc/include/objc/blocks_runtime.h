/* GNUstep's headers look for the blocks runtime under this name; Talvo's
 * platform layer defines the runtime's entry points itself (see
 * platform/objc/BlocksRuntime.m) and takes only the declarations from the
 * system's Block.h. */
#include <Block.h>
