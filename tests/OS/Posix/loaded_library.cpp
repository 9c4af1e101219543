/** A library for dynlib_test to load. */

extern "C" {

/** Is nowhere: the library can only be loaded by who binds functions when they are called. */
int KestrinTestNowhere();

__attribute__((visibility("default"))) int kestrin_test_number = 41;

__attribute__((visibility("default"))) int KestrinTestNext(int number)
{
    return number < 0 ? KestrinTestNowhere() : number + 1;
}
}
