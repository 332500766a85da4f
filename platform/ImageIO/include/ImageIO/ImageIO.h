/*
 * <ImageIO/ImageIO.h> for Talvo on GNUstep: image sources over files and
 * data, their header properties and their decoded images. Image
 * destinations (writing files), incremental sources, thumbnails and
 * metadata trees are not covered.
 */
#ifndef TALVO_IMAGEIO_H
#define TALVO_IMAGEIO_H

#include <ImageIO/CGImageProperties.h>
#include <ImageIO/CGImageSource.h>

#endif
