asm(".globl a { ");
int after;
