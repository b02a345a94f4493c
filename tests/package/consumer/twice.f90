! B = twice(A) again, in Fortran.
subroutine vexFunction(nlhs, plhs, nrhs, prhs) bind(C, name="vexFunction")
  use ox_fortran
  implicit none
  integer(c_int), value :: nlhs, nrhs
  integer(ox_handle) :: plhs(*), prhs(*)
  real(c_double), pointer :: x(:, :), y(:, :)
  if (nrhs /= 1 .or. nlhs > 1 .or. OXISDOUBLE(prhs(1)) == 0) &
      call OXERRMSGIDANDTXT("twice:input", "One full real double array is needed.")
  plhs(1) = OXCREATEDOUBLEMATRIX730(OXGETM730(prhs(1)), OXGETN730(prhs(1)), oxREAL)
  x => ox_matrix(prhs(1))
  y => ox_matrix(plhs(1))
  y = 2 * x
end subroutine
