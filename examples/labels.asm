; Prints what label_places lists: the place on the screen and the text of each, and a place of 0.

draw_labels:
        ld      hl,label_places
next_label:
        ld      e,(hl)
        inc     hl
        ld      d,(hl)
        inc     hl
        ld      a,d
        or      e
        ret     z
        call    print
        jr      next_label
