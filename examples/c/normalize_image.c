/* normalize_image: stretches the grey values of an image so that two deviations to both sides of
   the mean fill the range. uint8 in and out, single in between: what lies further out saturates,
   and the conversion warns of it once, however many pixels there are. */
#include <math.h>
#include <ox.h>

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nrhs != 1 || nlhs > 1 || !oxIsUint8(prhs[0]) || oxIsComplex(prhs[0]))
        oxErrMsgIdAndTxt("VELTRO:normalize_image:input",
                         "y = normalize_image(x) takes one real uint8 image.");
    const size_t n = oxGetNumberOfElements(prhs[0]);
    float *x = oxMalloc((n + 1) * sizeof *x); /* listed: freed with the call */
    oxConvertBufferToType(x, oxSINGLE_CLASS, oxGetData(prhs[0]), oxUINT8_CLASS, n);

    double sum = 0, squares = 0;
    for (size_t i = 0; i < n; ++i) sum += x[i];
    const double mean = n ? sum / (double)n : 0;
    for (size_t i = 0; i < n; ++i) squares += (x[i] - mean) * (x[i] - mean);
    const double deviation = n ? sqrt(squares / (double)n) : 0;
    const float scale = deviation > 0 ? (float)(127.5 / (2 * deviation)) : 1;
    for (size_t i = 0; i < n; ++i) x[i] = roundf((x[i] - (float)mean) * scale + 127.5f);

    plhs[0] = oxCreateNumericArray(oxGetNumberOfDimensions(prhs[0]), oxGetDimensions(prhs[0]),
                                   oxUINT8_CLASS, oxREAL);
    oxConvertBufferToType(oxGetData(plhs[0]), oxUINT8_CLASS, x, oxSINGLE_CLASS, n);
}
