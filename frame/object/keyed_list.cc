#include "tovalin/keyed_list.h"

namespace tovalin {

void AttachCursor(CursorState*& first, CursorState& cursor) {
  cursor.next = first;
  first = &cursor;
}

void DetachCursor(CursorState*& first, CursorState& cursor) {
  CursorState** link = &first;
  while (*link != &cursor) link = &(*link)->next;
  *link = cursor.next;
}

}  // namespace tovalin
