/* Globals of a program that never heard of the library's objects of the same names. By the rules of
 * ELF they take the names away from the library. */
unsigned seed = 12345;
unsigned des = 1;
unsigned rsa = 2;
unsigned idea = 3;
unsigned sha512 = 4;

int own_names_intact(void);
int own_names_intact(void) {
  return seed == 12345 && des == 1 && rsa == 2 && idea == 3 && sha512 == 4;
}
