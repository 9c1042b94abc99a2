/* The header as C sees it, with nothing before it. */
#include "ombrel/protocol.h"

#include <string.h>

/* The message that README's and everybody's first companion sends. */
size_t WriteFirstMessage(unsigned char* bytes);

size_t WriteFirstMessage(unsigned char* bytes) {
  const OmbrelMessageHeader header = {sizeof(OmbrelFramerateUpdate), OMBREL_FRAMERATE_UPDATE};
  const OmbrelFramerateUpdate update = {90};
  memcpy(bytes, &header, sizeof(header));
  memcpy(bytes + sizeof(header), &update, sizeof(update));
  return sizeof(header) + sizeof(update);
}
