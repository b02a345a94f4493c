C     heat: n steps of the heat equation on a plate whose edge keeps its
C     temperature. Fixed form, implicit interfaces, 32-bit sizes.
      subroutine vexfunction(nlhs, plhs, nrhs, prhs)
      implicit none
      include 'oxfort.inc'
      integer*4 nlhs, nrhs, m, n, most
      integer*8 plhs(*), prhs(*)
      parameter (most = 10000)
      real*8 x(most), w(most)
      if (nrhs .ne. 2 .or. nlhs .gt. 1)
     &  call OXERRMSGIDANDTXT('VELTRO:heat:arguments',
     &    'y = heat(x, steps) takes a matrix and a number.')
      if (OXISDOUBLE(prhs(1)) .eq. 0 .or. OXISSPARSE(prhs(1)) .eq. 1)
     &  call OXERRMSGTXT('The plate must be a full double matrix')
      m = OXGETM(prhs(1))
      n = OXGETN(prhs(1))
      if (OXGETNUMBEROFELEMENTS(prhs(1)) .gt. most)
     &  call OXERRMSGTXT('The plate is too large')
      call OXCOPYPTRTOREAL8(OXGETPR(prhs(1)), x, m * n)
      call conduct(x, w, m, n, nint(OXGETSCALAR(prhs(2))))
      plhs(1) = OXCREATEDOUBLEMATRIX(m, n, oxREAL)
      call OXCOPYREAL8TOPTR(OXGETPR(plhs(1)), x, m * n)
      end

      subroutine conduct(x, w, m, n, steps)
      implicit none
      integer*4 m, n, steps, i, j, k
      real*8 x(m, n), w(m, n)
      do k = 1, steps
        do j = 1, n
          do i = 1, m
            w(i, j) = x(i, j)
          end do
        end do
        do j = 2, n - 1
          do i = 2, m - 1
            x(i, j) = w(i, j) + 0.2d0 * (w(i-1, j) + w(i+1, j)
     &        + w(i, j-1) + w(i, j+1) - 4.0d0 * w(i, j))
          end do
        end do
      end do
      end
