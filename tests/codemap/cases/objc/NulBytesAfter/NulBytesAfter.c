int a;;;
;
int b;
