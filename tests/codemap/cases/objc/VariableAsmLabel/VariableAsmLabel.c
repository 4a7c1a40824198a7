int errno_copy asm("errno");
