! cholesky: the lower triangular l with l * transpose(l) = a, for a symmetric positive definite a.
subroutine vexFunction(nlhs, plhs, nrhs, prhs) bind(C, name="vexFunction")
  use ox_fortran
  implicit none
  integer(c_int), value :: nlhs, nrhs
  integer(ox_handle) :: plhs(*), prhs(*)
  real(c_double), pointer :: a(:, :), l(:, :)
  integer(ox_size) :: n, j

  if (nrhs /= 1 .or. nlhs > 1) &
      call OXERRMSGIDANDTXT("VELTRO:cholesky:arguments", "l = cholesky(a) takes one matrix.")
  if (OXISDOUBLE(prhs(1)) == 0 .or. OXISSPARSE(prhs(1)) == 1 .or. OXISCOMPLEX(prhs(1)) == 1) &
      call OXERRMSGIDANDTXT("VELTRO:cholesky:input", "The input must be a full real double matrix.")
  n = OXGETM730(prhs(1))
  if (OXGETN730(prhs(1)) /= n) &
      call OXERRMSGIDANDTXT("VELTRO:cholesky:square", "The matrix must be square.")

  plhs(1) = OXCREATEDOUBLEMATRIX730(n, n, oxREAL)
  a => ox_matrix(prhs(1))
  l => ox_matrix(plhs(1)) ! zero so far
  do j = 1, n
    l(j, j) = a(j, j) - sum(l(j, :j-1)**2)
    if (.not. l(j, j) > 0) & ! the raise leaves at once; the unfinished result goes with the call
        call OXERRMSGIDANDTXT("VELTRO:cholesky:indefinite", "The matrix is not positive definite.")
    l(j, j) = sqrt(l(j, j))
    l(j+1:, j) = (a(j+1:, j) - matmul(l(j+1:, :j-1), l(j, :j-1))) / l(j, j)
  end do
end subroutine
