! roots: the complex roots of the polynomial p(1) * x**n + ... + p(n+1), all at once (Durand-Kerner).
subroutine vexFunction(nlhs, plhs, nrhs, prhs) bind(C, name="vexFunction")
  use ox_fortran
  implicit none
  integer(c_int), value :: nlhs, nrhs
  integer(ox_handle) :: plhs(*), prhs(*), work
  complex(c_double_complex), pointer :: p(:), x(:)
  complex(c_double_complex) :: value, others, step
  real(c_double) :: change
  integer(ox_size) :: n, i, j
  integer :: round

  if (nrhs /= 1 .or. nlhs > 1) &
      call OXERRMSGIDANDTXT("VELTRO:roots:arguments", "x = roots(p) takes one vector.")
  n = OXGETNUMBEROFELEMENTS730(prhs(1)) - 1
  if (OXISDOUBLE(prhs(1)) == 0 .or. OXISSPARSE(prhs(1)) == 1 .or. n < 1) &
      call OXERRMSGIDANDTXT("VELTRO:roots:input", "The input must be two or more double coefficients.")

  ! Work space that is freed with the call, also by an error.
  work = OXCALLOC730(2 * n + 1, int(storage_size(value) / 8, ox_size))
  call c_f_pointer(transfer(work, c_null_ptr), p, [n + 1])
  call c_f_pointer(transfer(work + (n + 1) * storage_size(value) / 8, c_null_ptr), x, [n])
  ! For real coefficients the imaginary address is 0, and their imaginary halves stay zero.
  call OXCOPYPTRTOCOMPLEX16730(OXGETPR(prhs(1)), OXGETPI(prhs(1)), p, n + 1)
  if (abs(p(1)) == 0) call OXERRMSGIDANDTXT("VELTRO:roots:leading", "The first coefficient is zero.")

  p = p / p(1)
  x = [(cmplx(0.4d0, 0.9d0, c_double_complex)**int(i), i = 0, n - 1)]
  do round = 1, 500
    change = 0
    do i = 1, n
      value = p(1)
      others = 1
      do j = 1, n
        value = value * x(i) + p(j + 1)
        if (j /= i) others = others * (x(i) - x(j))
      end do
      step = value / others
      x(i) = x(i) - step
      change = max(change, abs(step))
    end do
    if (change < 1d-13) exit
  end do

  plhs(1) = OXCREATEDOUBLEMATRIX730(n, 1_ox_size, oxCOMPLEX)
  call OXCOPYCOMPLEX16TOPTR730(OXGETPR(plhs(1)), OXGETPI(plhs(1)), x, n)
end subroutine
