/* class A { */
let a = 1
/* func f() {
   } /* let x = 1 */ var y
*/
let b = 2
/**/ let c = 3 /***/
/*/ let no = 1 /*/ let no2 = 1 */ */ let d = 4
