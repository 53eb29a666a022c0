; The socket of the disk ROM, empty: 8 KB at C000 that read as FF.
        ORG 0C000h
        DEFS 2000h, 0FFh
