void run(void) {
    goto end;
end:
    return;
}
int after;
