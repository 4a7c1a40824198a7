int /* a */ run /* b */ ( /* c */ ) /* d */ { return 1; }
