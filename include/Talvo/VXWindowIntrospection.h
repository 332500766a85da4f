#import <Talvo/TalvoExport.h>

/** Flags for client code, zero at load; the toolkit never reads or writes
 * them. */
TALVO_EXTERN unsigned char VXIntrospectionDone;
TALVO_EXTERN unsigned char VXIntrospectionDoneForBorderless;
