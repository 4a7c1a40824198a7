struct tide {
    LIST_ENTRY(tide) link;
    int a;
};
