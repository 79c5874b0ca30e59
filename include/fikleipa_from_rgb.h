/// @file fikleipa_from_rgb.h
/// The part of fikleipa.h that converts from RGB to YCbCr. Include fikleipa.h, whose conventions hold here too.
#ifndef FIKLEIPA_FROM_RGB_H
#define FIKLEIPA_FROM_RGB_H

#ifndef FIKLEIPA_H
#error "include fikleipa.h, of which this is a part"
#endif

// ---------------------------------------------------------------------------------------------------------------------
// RGB to 8-bit YCbCr
// ---------------------------------------------------------------------------------------------------------------------

// ---------------------------------------------------------------------------------------------------------------------
// RGB to v210 and to planes of 10, 12 and 16 bits
// ---------------------------------------------------------------------------------------------------------------------

#endif // FIKLEIPA_FROM_RGB_H
