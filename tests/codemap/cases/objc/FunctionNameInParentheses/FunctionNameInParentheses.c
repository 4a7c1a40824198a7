int (lua_gettop)(void *state) { return 0; }
