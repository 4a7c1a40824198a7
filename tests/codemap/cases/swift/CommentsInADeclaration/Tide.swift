public /* who */ func /* what */ rise(/* how */ by amount /* much */: Int) // well
    /* then */ -> Int { amount }
struct /* a */ Tide /* b */ : /* c */ Level /* d */ {
}
